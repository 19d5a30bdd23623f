#include "application/import/mail/mail_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

MailItem parsed(const std::string& header, const std::string& body = "") {
  RawMail mail;
  for (std::string_view rest = header; !rest.empty();) {
    const auto line = rest.substr(0, rest.find('\n') + 1);
    mail.append({line, true});
    rest.remove_prefix(line.size());
  }
  mail.append({"\n", true});
  mail.append({body, true});
  return MailParser{BodyLines::asSent}.parse(mail);
}

/// A mail with a sender, a date and an id besides `header`; a field in `header` comes before those.
MailMessage message(const std::string& header, const std::string& body = "") {
  return std::get<MailMessage>(parsed(header + "From: Zoe <zoe@example.org>\nDate: Thu, 5 Mar 2026 09:15:00 +0000\n"
                                               "Message-ID: <own@example.org>\n",
                                      body));
}

std::string text(const std::string& kind, const std::string& body) {
  return "Content-Type: text/" + kind + "; charset=utf-8\n\n" + body + "\n";
}

std::optional<std::string> questionOfParts(const std::vector<std::string>& parts) {
  std::string body = "preamble, is it read?\n";
  for (const auto& part : parts) {
    body += "--b\n" + part;
  }
  return message("Content-Type: multipart/mixed; boundary=\"b\"\n", body + "--b--\nepilogue").question;
}

TEST(MailDates, AreWholeSecondsInUtc) {
  EXPECT_EQ(formatInternetDateTime(message("Date: Thu, 5 Mar 2026 09:15:07 -0530 (IST)\n").sentAt),
            "2026-03-05T14:45:07Z");
  EXPECT_EQ(formatInternetDateTime(message("Date: 5 Mar 26 09:15 GMT\n").sentAt), "2026-03-05T09:15:00Z");
  for (const char* date : {"", "yesterday", "Thu, 32 Mar 2026 09:15:00 +0000", "Wed, 31 Dec 1969 23:59:59 +0000",
                           "Fri, 31 Dec 12026 00:00:00 +0000"}) {
    EXPECT_EQ(parsed("From: zoe@example.org\nDate: " + std::string{date} + "\n"),
              MailItem{MailSkip{MailSkipReason::undated}})
        << date;
  }
}

TEST(MailAddresses, AreDecodedAndComparable) {
  const auto mail = message(
      "To: =?utf-8?Q?Zo=C3=AB?= =?iso-8859-1?Q?_M=FCller?= <Zoe@Example.ORG>,\n\t\"Doe, Ana\" <ana@example.org>\n"
      "Cc: team: bo@example.org, Carl <carl@example.org>;, 'eva@example.org', nobody, <>\n"
      "From: Zo\xeb <zoe@example.org>\n");
  EXPECT_THAT(mail.to,
              ElementsAre(MailAddress{"Zoë Müller", "zoe@example.org"}, MailAddress{"Doe, Ana", "ana@example.org"}));
  EXPECT_THAT(mail.cc, ElementsAre(MailAddress{"", "bo@example.org"}, MailAddress{"Carl", "carl@example.org"},
                                   MailAddress{"", "eva@example.org"}));
  EXPECT_THAT(mail.from, ElementsAre(MailAddress{"Zoë", "zoe@example.org"}));
  EXPECT_THAT(message("To: undisclosed-recipients:;\n").to, IsEmpty());
}

TEST(MailAddresses, AreReadFromListsOfAnyLengthAndDepth) {
  std::string list = "a0@example.org";
  std::string nested;
  for (int count = 1; list.size() < 70'000; ++count) {
    list += ", someone.with.a.long.name." + std::to_string(count) + "@example.org";
    nested += "a:a:a:a:a:a:a:a:a:a:a:a:a:a:a:a:a:a:a:a:";
  }
  const auto to = message("To: " + list + "\n").to;
  ASSERT_GT(to.size(), 1000U);
  EXPECT_TRUE(to.back().address.ends_with("@example.org")) << "cut off within " << to.back().address;
  EXPECT_EQ(message("To: " + nested + "b@example.org\n").messageID, "own@example.org") << "nested groups are no stack";
}

TEST(MailSubjects, AreReadableWhateverTheirBytes) {
  const std::vector<std::pair<std::string, std::string>> subjects{
      {"=?utf-8?B?WsO8cmljaA==?=\n =?utf-8?Q?_trip?=", "Zürich trip"},
      {"a\n\tfolded   one ", "a folded one"},
      {"Z\xc3\xbcrich", "Zürich"},
      {"Z\xfcrich", "Zürich"},
      {std::string("nul\0bell\a", 9), "nul bell"},
      {"=?no-such-charset?Q?plain?=", "plain"},
      {"first\nSubject: second", "first"}};
  for (const auto& [raw, readable] : subjects) {
    EXPECT_EQ(message("sUbJeCt : " + raw + "\n").subject, readable);
  }
}

TEST(Threading, PutsReferencesBeforeInReplyToWithoutRepeats) {
  const auto references = [](const std::string& fields) { return message(fields).references; };
  EXPECT_THAT(
      references(
          "In-Reply-To: <c@x> (Zoe's message of Monday)\nReferences: <a@x>\n <b@x>\t<a@x> <own@example.org><c@x>\n"),
      ElementsAre("a@x", "b@x", "c@x"));
  EXPECT_THAT(references("In-Reply-To: a@x\n"), ElementsAre("a@x"));
  EXPECT_THAT(references("In-Reply-To: your message of Monday\nReferences: <> <a@x> <unclosed@x\n"),
              ElementsAre("a@x"));
  EXPECT_EQ(message("Message-ID: no-brackets\n").messageID, "no-brackets");

  std::string longThread = "References:";
  for (int count = 0; count < 150; ++count) {
    longThread += " <" + std::to_string(count) + "@x>";
  }
  const auto kept = references(longThread + "\n");
  ASSERT_EQ(kept.size(), 100U) << "the first and the last ones";
  EXPECT_EQ(kept[0] + kept[1] + kept[99], "0@x51@x149@x");
}

TEST(Automation, IsSeenInFieldsAndMailboxesAndAsksNothingAsForwardsDo) {
  for (const char* header :
       {"Auto-Submitted: auto-replied; owner=x\n", "Precedence: auto_reply\n",
        "Content-Type: multipart/report; boundary=b\n", "From: noreply@example.org\n", "From: no-reply@example.org\n",
        "From: do_not.reply@example.org\n", "From: drive-shares-noreply@example.org\n", "From: noreply2@example.org\n",
        "From: MAILER-DAEMON@example.org\n", "From: bounces+7=a@example.org\n"}) {
    const auto mail = message(header, "Are you there?\n");
    EXPECT_TRUE(mail.isAutomated) << header;
    EXPECT_EQ(mail.question, std::nullopt) << header;
  }
  for (const char* header :
       {"Auto-Submitted: no\n", "Precedence: first-class\n", "Precedence: Bulk\n", "List-Id: <team.example.org>\n",
        "From: nora.reply@example.org\n", "From: postmasters@example.org\n", "Subject: Re: Fwd: plan\n",
        "Subject: Forward: plan\n"}) {
    const auto mail = message(header, "Are you there?\n");
    EXPECT_FALSE(mail.isAutomated) << header;
    EXPECT_EQ(mail.question, "Are you there?") << header;
  }
  for (const char* subject : {"Fwd: plan\n", "FW: plan\n", "WG: Plan\n", "[Fwd: plan]\n"}) {
    EXPECT_EQ(message(std::string{"Subject: "} + subject, "Are you there?\n").question, std::nullopt) << subject;
  }
  for (const char* header : {"List-Id: x\n", "List-Unsubscribe: x\n", "Precedence: bulk\n", "Precedence: junk (x)\n"}) {
    EXPECT_TRUE(message(header).isBulk) << header;
  }
  EXPECT_FALSE(message("Precedence: first-class\n").isBulk);
  EXPECT_THAT(
      message("List-Post: <mailto:Team@example.org?subject=x>\nX-Mailing-List: dev@example.org; see x\n").listAddresses,
      ElementsAre("team@example.org", "dev@example.org"));
  EXPECT_THAT(message("List-Post: NO\n").listAddresses, testing::IsEmpty());
}

TEST(Bodies, AreWhatTheReaderSeesOfTheFirstTextThatIsNotAttached) {
  const std::pair<std::vector<std::string>, std::optional<std::string>> bodies[]{
      {{text("html", "<p>Is this HTML?</p>"), text("plain", "Is this plain?"), text("plain", "Is this later?")},
       "Is this plain?"},
      {{"Content-Disposition: attachment; filename=a.txt\n" + text("plain", "Is this attached?"),
        "Content-Type: message/rfc822\n\nSubject: x\n\nIs this attached?\n",
        "Content-Type: multipart/related; boundary=bb\n\n--bb\n" + text("plain", "Is this nested?") + "--bb--\n"},
       "Is this nested?"},
      {{text("plain", "Shall we meet then?"), "Content-Type: text/calendar; method=REQUEST\n\nBEGIN:VCALENDAR\n"}, {}},
      {{"\nIs this bare?\n"}, "Is this bare?"},
      {{text("html",
             "<head><style>a?b c?</style></head><!-- is it a comment? --><div>Hi&nbsp;Zo&#xEB;,<br>\nd&#39;you "
             "<a href='http://x/?a b'>come</a>\ntoo?</div><blockquote>Is this quoted?</blockquote>")},
       "Hi Zoë, d'you come too?"},
      {{text("html", "<p>No.</p><blockquote>Is <blockquote>and</blockquote> this quoted?</blockquote>")}, {}},
      {{text("html", "Is it 1 &lt; 2 & 3 < 4?<br")}, "Is it 1 < 2 & 3 < 4?"}};
  for (const auto& [parts, question] : bodies) {
    EXPECT_EQ(questionOfParts(parts), question) << parts.front();
  }
}

TEST(Bodies, AreDecodedWhateverTheirCharset) {
  struct {
    const char* fields;
    std::string body;
    const char* question;
  } const bodies[]{
      {"Content-Transfer-Encoding: quoted-printable\nContent-Type: text/plain; charset=utf-8\n",
       "Gehen wir nach Z=C3=BCr=\nich?\n", "Gehen wir nach Zürich?"},
      {"Content-Transfer-Encoding: BASE64\n", "QXJlIHlv\ndSB0aGVy\nZT8=\n", "Are you there?"},
      {"Content-Type: text/plain; charset=\"ISO-8859-1\"\n", "Nach Z\xfcrich \x93heute\x94?\n", "Nach Zürich “heute”?"},
      {"Content-Type: text/plain; charset=gb2312\n", "\xc4\xe3\xba\xc3\xc2\xf0\xa3\xbf", "你好吗？"},
      {"Content-Type: text/plain; charset=no-such\n", "Nach Z\xfcrich?\n", "Nach Zürich?"},
      {"Content-Type: text/plain; charset=utf-8\n", "Nach Z\xfcrich?\n", "Nach Z\uFFFDrich?"},
      {"", std::string("Are\0 you there?\n", 16), "Are you there?"}};
  for (const auto& [fields, body, question] : bodies) {
    EXPECT_EQ(message(fields, body).question, question) << fields;
  }
}

TEST(Bodies, NestedWithoutEndAreGivenUp) {
  std::string body;
  for (int depth = 0; depth < 5000; ++depth) {
    const auto boundary = "b" + std::to_string(depth);
    body.append("Content-Type: multipart/mixed; boundary=").append(boundary);
    body.append("\n\n--").append(boundary).append("\n");
  }
  EXPECT_EQ(questionOfParts({body + text("plain", "Is this deep?")}), std::nullopt);
  EXPECT_EQ(questionOfParts({body, text("plain", "Is this after it?")}), "Is this after it?");
  EXPECT_EQ(message("Content-Type: multipart/mixed\n", text("plain", "Is there no boundary?")).question, std::nullopt);
}

} // namespace
} // namespace orvan
