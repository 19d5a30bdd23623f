#include "application/import/mail/maildir_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "application/import/mail/mail_source_error.h"
#include "application/import/mail/mbox_source.h"
#include "scratch_mailbox.h"

namespace orvan {
namespace {

using testing::ElementsAre;

std::string mail(const std::string& subject) {
  return "From: zoe@example.org\nDate: Thu, 5 Mar 2026 09:15:00 +0000\nSubject: " + subject + "\n\nHello.\n";
}

class Maildir : public testing::Test {
 protected:
  void deliver(const std::string& name, const std::string& subject) const { mailbox_.write(name, mail(subject)); }

  ScratchMailbox mailbox_;
};

TEST_F(Maildir, GivesDeliveredMailsOfAllFoldersInTheOrderOfTheirPaths) {
  deliver("new/3", "new");
  deliver("cur/2:2,S", "second");
  deliver("cur/1:2,RS", "first");
  deliver("tmp/0", "half-written");
  deliver(".Sent/cur/1:2,S", "sent");
  deliver(".Archive.2025/new/1", "archived");
  deliver("cur/.hidden", "no mail");
  MaildirSource source{mailbox_.path()};
  EXPECT_THAT(outlineOf(source), ElementsAre("first", "second", "new", "archived", "sent"));
  EXPECT_EQ(source.bytesTotal() - source.bytesRead(), mail("no mail").size());
}

TEST_F(Maildir, SkipsDraftsAndTrashAndWhatCannotBeRead) {
  deliver("cur/1:2,DS", "draft");
  deliver("cur/2:2,ST", "trashed");
  deliver("cur/3!2,T", "trashed, on a file system without colons");
  deliver("cur/4T:2,S", "a T in the unique name");
  std::filesystem::create_symlink("nowhere", mailbox_.path() / "cur/5:2,S");
  std::filesystem::create_directory(mailbox_.path() / "cur/6");
  mailbox_.write("cur/7", "");
  MaildirSource source{mailbox_.path()};
  EXPECT_THAT(outlineOf(source),
              ElementsAre("(draft)", "(in the trash)", "(in the trash)", "a T in the unique name",
                          "(file that cannot be read)", "(file that cannot be read)", "(no sender address)"));
}

TEST_F(Maildir, RecognisesTheMailOfAnMboxFileThatHasNoId) {
  const auto unread = mail("no id");
  mailbox_.write("cur/1", unread);
  const auto inMbox = mailbox_.write("inbox",
                                     "From zoe\r\nStatus: RO\r\nX-Mozilla-Status: 0001\r\nFrom: zoe@example.org\r\n"
                                     "Date: Thu, 5 Mar 2026 09:15:00 +0000\r\nSubject: no id\r\n\r\nHello.\r\n");
  const auto other = mailbox_.write("other", "From zoe\n" + mail("another"));
  const auto idOf = [](MailSource&& source) {
    return std::get<MailMessage>(source.next().value_or(MailSkip{MailSkipReason::unreadable})).messageID;
  };
  EXPECT_EQ(idOf(MaildirSource{mailbox_.path()}), idOf(MboxSource{inMbox}));
  EXPECT_NE(idOf(MboxSource{inMbox}), idOf(MboxSource{other}));
}

TEST_F(Maildir, SaysWhyItCannotBeOpened) {
  EXPECT_EQ(openingErrorOf<MaildirSource>(mailbox_.path()), make_error_code(MailSourceError::notAMaildir));
  EXPECT_EQ(openingErrorOf<MaildirSource>(mailbox_.write("file", "")), make_error_code(MailSourceError::isAFile));
  EXPECT_EQ(openingErrorOf<MaildirSource>(mailbox_.path() / "absent"), make_error_code(MailSourceError::notFound));
}

} // namespace
} // namespace orvan
