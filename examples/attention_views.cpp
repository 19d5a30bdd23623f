// Shows the catch-up list of two invented people in a window of Qt Quick, and prints what the user asks for.

#include "OrvanRelationshipAttention/ui/attention_views.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <chrono>
#include <iostream>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "OrvanRelationshipAttention/ui/attention_catch_up_model.h"

namespace {

orvan::AttentionCatchUpPerson someone(const char* key, const char* name, const char* waitingSince) {
  return {key, name, {key, "", 30, {{"thread", "mail", "mail", "event", waitingSince}}, {}, {}, {}, {}, {}, 0}};
}

} // namespace

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  const auto now = [] { return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now()); };

  orvan::AttentionCatchUpModel model([now] { return orvan::instantByAddingDays(now(), 7); });
  const std::vector people{someone("p-1", "Kofi Mensah", "2026-11-12T09:00:00Z"),
                           someone("p-2", "Inês Pinho", "2026-11-17T16:30:00Z")};
  model.setItems(orvan::AttentionCatchUpSelector::select(people, {}, now()));
  QObject::connect(&model, &orvan::AttentionCatchUpModel::routeRequested,
                   [](const auto& request) { std::cout << "open " << request.personKey() << std::endl; });
  QObject::connect(&model, &orvan::AttentionCatchUpModel::actionRequested,
                   [](const auto& request) { std::cout << "decide on " << request.itemKey() << std::endl; });

  QQmlApplicationEngine engine;
  orvan::addAttentionViews(engine);
  engine.setInitialProperties({{"model", QVariant::fromValue(&model)}});
  engine.loadData(R"(
    import QtQuick
    import OrvanRelationshipAttention

    Window {
      id: window
      required property AttentionCatchUpModel model
      visible: true; width: 360; height: 240; color: palette.window
      AttentionCatchUpView { anchors.fill: parent; anchors.margins: 12; model: window.model }
    })");
  return QGuiApplication::exec();
}
