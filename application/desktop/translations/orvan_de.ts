<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AttentionWhyNowView</name>
    <message>
        <source>expanded</source>
        <translation>ausgeklappt</translation>
    </message>
    <message>
        <source>collapsed</source>
        <translation>eingeklappt</translation>
    </message>
</context>
<context>
    <name>CatchUpList</name>
    <message>
        <source>People to get back in touch with</source>
        <translation>Bei wem du dich wieder melden kannst</translation>
    </message>
    <message>
        <source>Close what is older</source>
        <translation>Älteres schließen</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>a heading, and how many there are</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>expanded</source>
        <translation>ausgeklappt</translation>
    </message>
    <message>
        <source>collapsed</source>
        <translation>eingeklappt</translation>
    </message>
</context>
<context>
    <name>DayPicker</name>
    <message>
        <source>Month before</source>
        <translation>Voriger Monat</translation>
    </message>
    <message>
        <source>Month after</source>
        <translation>Nächster Monat</translation>
    </message>
</context>
<context>
    <name>Failure</name>
    <message>
        <source>Catch-up unavailable</source>
        <translation>Catch-up unavailable</translation>
    </message>
    <message>
        <source>Welcome to Orvan</source>
        <translation>Willkommen bei Orvan</translation>
    </message>
    <message>
        <source>Orvan tells you whom to get back in touch with, and why. It reads your mail, calendars and contacts where they are, and keeps what it learns in one encrypted file on this computer; nothing leaves it. To begin, make that file and let Orvan look for your mail:</source>
        <translation>Orvan sagt dir, bei wem du dich wieder melden kannst, und warum. Es liest deine Mails, Kalender und Kontakte dort, wo sie sind, und bewahrt das Gelernte in einer verschlüsselten Datei auf diesem Rechner auf; nichts verlässt ihn. Lege zu Beginn diese Datei an und lass Orvan nach deinen Mails suchen:</translation>
    </message>
    <message>
        <source>This store belongs to a newer Orvan</source>
        <translation>Dieser Datenbestand gehört zu einem neueren Orvan</translation>
    </message>
    <message>
        <source>It was last used by a newer version than this one, which must not touch it. Start that version, or install the newest. Nothing was changed.</source>
        <translation>Zuletzt hat ihn eine neuere Version benutzt als diese, die ihn darum nicht anrühren darf. Starte jene Version oder installiere die neueste. Es wurde nichts verändert.</translation>
    </message>
    <message>
        <source>The key to the store is missing</source>
        <translation>Der Schlüssel zum Datenbestand fehlt</translation>
    </message>
    <message>
        <source>The store is there, and only its own key opens it. Put the key back where it was, or name a copy of it when you start Orvan:</source>
        <translation>Der Datenbestand ist da, und nur sein eigener Schlüssel öffnet ihn. Lege den Schlüssel wieder dorthin, wo er war, oder nenne beim Start von Orvan eine Kopie davon:</translation>
    </message>
    <message>
        <source>The store does not open</source>
        <translation>Der Datenbestand lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>Either this is not the key that it was made with, or the store is damaged. Orvan can tell which, and bring it back from a backup:</source>
        <translation>Entweder wurde er mit einem anderen Schlüssel angelegt, oder er ist beschädigt. Orvan kann sagen, was davon zutrifft, und ihn aus einer Sicherung zurückholen:</translation>
    </message>
    <message>
        <source>Others can look into the store</source>
        <translation>Andere können in den Datenbestand sehen</translation>
    </message>
    <message>
        <source>Orvan opens it only when you alone can read it. Take that away from others; this tells which files are meant:</source>
        <translation>Orvan öffnet ihn nur, wenn du allein ihn lesen kannst. Nimm anderen dieses Recht; dies nennt die Dateien, um die es geht:</translation>
    </message>
    <message>
        <source>Another program has kept the store busy for long. Try again in a moment.</source>
        <translation>Ein anderes Programm beansprucht den Datenbestand schon lange. Versuche es gleich noch einmal.</translation>
    </message>
    <message>
        <source>The disk is full</source>
        <translation>Der Datenträger ist voll</translation>
    </message>
    <message>
        <source>Make some room, and try again. Nothing was lost.</source>
        <translation>Schaffe etwas Platz und versuche es noch einmal. Es ging nichts verloren.</translation>
    </message>
    <message>
        <source>The store could not be read. This tells what is wrong, and what to do:</source>
        <translation>Der Datenbestand konnte nicht gelesen werden. Dies sagt, was nicht stimmt und was zu tun ist:</translation>
    </message>
    <message>
        <source>Your keyring is locked</source>
        <translation>Dein Schlüsselbund ist gesperrt</translation>
    </message>
    <message>
        <source>The key to the store lies in the desktop&apos;s keyring. Unlock it with the desktop&apos;s password program, and try again.</source>
        <translation>Der Schlüssel zum Datenbestand liegt im Schlüsselbund der Arbeitsumgebung. Entsperre ihn mit ihrem Passwortprogramm und versuche es noch einmal.</translation>
    </message>
    <message>
        <source>There is no keyring</source>
        <translation>Es gibt keinen Schlüsselbund</translation>
    </message>
    <message>
        <source>The key to the store lies in the desktop&apos;s keyring, and none is running. Start it, or name a copy of the key when you start Orvan:</source>
        <translation>Der Schlüssel zum Datenbestand liegt im Schlüsselbund der Arbeitsumgebung, und es läuft keiner. Starte ihn oder nenne beim Start von Orvan eine Kopie des Schlüssels:</translation>
    </message>
    <message>
        <source>The key to the store cannot be read</source>
        <translation>Der Schlüssel zum Datenbestand ist nicht lesbar</translation>
    </message>
    <message>
        <source>Its file has to be yours, and readable by you alone. This tells what is wrong:</source>
        <translation>Seine Datei muss dir gehören und darf nur für dich lesbar sein. Dies sagt, was nicht stimmt:</translation>
    </message>
</context>
<context>
    <name>FailurePage</name>
    <message>
        <source>Commands for a terminal</source>
        <translation>Befehle für ein Terminal</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal versuchen</translation>
    </message>
</context>
<context>
    <name>KeysPage</name>
    <message>
        <source>Next person</source>
        <translation>Nächste Person</translation>
    </message>
    <message>
        <source>Person before</source>
        <translation>Vorige Person</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Eingabe</translation>
    </message>
    <message>
        <source>Go to the person</source>
        <translation>Zur Person gehen</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>Back to the list</source>
        <translation>Zurück zur Liste</translation>
    </message>
    <message>
        <source>Snooze</source>
        <translation>Zurückstellen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Resolve</source>
        <translation>Erledigen</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Search people</source>
        <translation>Personen suchen</translation>
    </message>
    <message>
        <source>Larger, smaller, usual text</source>
        <translation>Größere, kleinere, übliche Schrift</translation>
    </message>
    <message>
        <source>These keys</source>
        <translation>Diese Tasten</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Orvan</source>
        <translation>Orvan</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Search people</source>
        <translation>Personen suchen</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Nobody is waiting for you.</source>
        <translation>Niemand wartet auf dich.</translation>
    </message>
    <message>
        <source>Orvan knows nobody yet.</source>
        <translation>Orvan kennt noch niemanden.</translation>
    </message>
    <message>
        <source>Every question is answered, and nothing is left open. When that changes, you see it here.</source>
        <translation>Jede Frage ist beantwortet, und nichts ist offen. Sobald sich das ändert, siehst du es hier.</translation>
    </message>
    <message>
        <source>Let it look for your mail and calendars: run “orvan sources discover” in a terminal. People appear here as soon as they are found.</source>
        <translation>Lass es nach deinen Mails und Kalendern suchen: Starte „orvan sources discover“ in einem Terminal. Wen es findet, der erscheint hier sogleich.</translation>
    </message>
</context>
<context>
    <name>MainMenu</name>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
</context>
<context>
    <name>NoticeBar</name>
    <message>
        <source>Undo (%1)</source>
        <translation>Rückgängig (%1)</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Noch einmal versuchen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>PersonPage</name>
    <message>
        <source>Snooze</source>
        <translation>Zurückstellen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Resolve</source>
        <translation>Erledigen</translation>
    </message>
    <message>
        <source>They asked</source>
        <translation>Die Frage an dich</translation>
    </message>
    <message>
        <source>The meeting</source>
        <translation>Das Treffen</translation>
    </message>
    <message>
        <source>Until now</source>
        <translation>Bis jetzt</translation>
    </message>
    <message>
        <source>The conversation</source>
        <translation>Das Gespräch</translation>
    </message>
    <message numerus="yes">
        <source>%n earlier</source>
        <translation>
            <numerusform>%n davor</numerusform>
            <numerusform>%n davor</numerusform>
        </translation>
    </message>
    <message>
        <source>There is also</source>
        <translation>Außerdem</translation>
    </message>
    <message>
        <source>What you decided</source>
        <translation>Was du entschieden hast</translation>
    </message>
</context>
<context>
    <name>SearchResults</name>
    <message>
        <source>People found</source>
        <translation>Gefundene Personen</translation>
    </message>
    <message>
        <source>Nobody you deal with has that in their name or address.</source>
        <translation>Bei niemandem, mit dem du zu tun hast, steht das im Namen oder in der Adresse.</translation>
    </message>
</context>
<context>
    <name>Snooze</name>
    <message>
        <source>Tomorrow</source>
        <translation>Morgen</translation>
    </message>
    <message>
        <source>Next week</source>
        <translation>Nächste Woche</translation>
    </message>
    <message>
        <source>Next month</source>
        <translation>Nächsten Monat</translation>
    </message>
</context>
<context>
    <name>SnoozeMenu</name>
    <message>
        <source>Snooze until</source>
        <translation>Zurückstellen bis</translation>
    </message>
    <message>
        <source>Another day…</source>
        <translation>Anderer Tag …</translation>
    </message>
</context>
<context>
    <name>Wording</name>
    <message>
        <source>“%1”</source>
        <translation>„%1“</translation>
    </message>
    <message>
        <source>%1, all day</source>
        <translation>%1, ganztägig</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>what a meeting is about, and where it is</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Waiting for your reply since %1</source>
        <translation>Wartet seit %1 auf deine Antwort</translation>
    </message>
    <message>
        <source>Meeting on %1</source>
        <translation>Treffen am %1</translation>
    </message>
    <message>
        <source>Back in touch since %1, after quiet since %2</source>
        <translation>Seit %1 wieder in Kontakt, davor Stille seit %2</translation>
    </message>
    <message>
        <source>Still open since %1</source>
        <translation>Noch offen seit %1</translation>
    </message>
    <message>
        <source>You wanted to get back to</source>
        <translation>Du wolltest dich melden</translation>
    </message>
    <message>
        <source>Now</source>
        <translation>Jetzt</translation>
    </message>
    <message>
        <source>Lately</source>
        <translation>In letzter Zeit</translation>
    </message>
    <message>
        <source>New to you</source>
        <translation>Neu für dich</translation>
    </message>
    <message>
        <source>Older</source>
        <translation>Älter</translation>
    </message>
    <message>
        <source>Due %1</source>
        <translation>Fällig: %1</translation>
    </message>
    <message>
        <source>You wrote</source>
        <translation>Du hast geschrieben</translation>
    </message>
    <message>
        <source>You met</source>
        <translation>Ihr habt euch getroffen</translation>
    </message>
    <message>
        <source>%1 wrote</source>
        <translation>%1 hat geschrieben</translation>
    </message>
    <message>
        <source>Somebody wrote</source>
        <translation>Jemand hat geschrieben</translation>
    </message>
    <message>
        <source>Nothing is waiting between you.</source>
        <translation>Zwischen euch ist nichts offen.</translation>
    </message>
    <message>
        <source>What the store holds gives no reason that could be shown.</source>
        <translation>Aus dem Datenbestand ergibt sich kein Grund, der sich zeigen ließe.</translation>
    </message>
    <message>
        <source>There is a reason, but no name to show.</source>
        <translation>Es gibt einen Grund, aber keinen Namen dazu.</translation>
    </message>
    <message>
        <source>Snoozed until %1.</source>
        <translation>Zurückgestellt bis %1.</translation>
    </message>
    <message>
        <source>Snoozed.</source>
        <translation>Zurückgestellt.</translation>
    </message>
    <message>
        <source>You dismissed this reason.</source>
        <translation>Du hast diesen Grund verworfen.</translation>
    </message>
    <message>
        <source>You resolved this.</source>
        <translation>Du hast das erledigt.</translation>
    </message>
    <message>
        <source>Not looked at: the list looks at the people you deal with most.</source>
        <translation>Nicht betrachtet: Die Liste betrachtet die Personen, mit denen du am meisten zu tun hast.</translation>
    </message>
    <message>
        <source>You hide this person.</source>
        <translation>Du blendest diese Person aus.</translation>
    </message>
    <message>
        <source>Snoozed until %1</source>
        <translation>Zurückgestellt bis %1</translation>
    </message>
    <message>
        <source>Dismissed</source>
        <translation>Verworfen</translation>
    </message>
    <message>
        <source>Resolved</source>
        <translation>Erledigt</translation>
    </message>
    <message>
        <source>On the list</source>
        <translation>Auf der Liste</translation>
    </message>
    <message>
        <source>Dismissed: %1</source>
        <translation>Verworfen: %1</translation>
    </message>
    <message>
        <source>Resolved: %1</source>
        <translation>Erledigt: %1</translation>
    </message>
    <message>
        <source>Snoozed until %2: %1</source>
        <translation>Zurückgestellt bis %2: %1</translation>
    </message>
    <message>
        <source>Up to date</source>
        <translation>Auf dem neuesten Stand</translation>
    </message>
    <message>
        <source>Up to date %1 min ago</source>
        <translation>Stand vor %1 Min.</translation>
    </message>
    <message>
        <source>Up to date %1 h ago</source>
        <translation>Stand vor %1 Std.</translation>
    </message>
    <message>
        <source>Up to date on %1</source>
        <translation>Stand vom %1</translation>
    </message>
</context>
<context>
    <name>orvan::PersonModel</name>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>You wanted to get back to them. %1</source>
        <translation>Du wolltest dich melden. %1</translation>
    </message>
    <message>
        <source>A follow-up: %1</source>
        <translation>Eine Erinnerung: %1</translation>
    </message>
</context>
<context>
    <name>orvan::WindowModel</name>
    <message>
        <source>Nothing is waiting between you.</source>
        <translation>Zwischen euch ist nichts offen.</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>The reason has changed meanwhile, so nothing was done: %1</source>
        <translation>Der Grund hat sich inzwischen geändert, darum geschah nichts: %1</translation>
    </message>
    <message>
        <source>Couldn&apos;t save — try again</source>
        <translation>Couldn&apos;t save — try again</translation>
    </message>
</context>
</TS>
