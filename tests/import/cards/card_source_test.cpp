#include "application/import/cards/card_source.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/test_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;

class Cards : public testing::Test {
 protected:
  std::vector<CardItem> read(const std::string& text) {
    write("cards.vcf", text);
    return readAll(folder.path() / "cards.vcf");
  }

  void write(const std::filesystem::path& name, const std::string& text) {
    const auto file = folder.path() / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
  }

  static std::vector<CardItem> readAll(const std::filesystem::path& path) {
    CardSource source(path);
    std::vector<CardItem> items;
    while (auto item = source.next()) {
      items.push_back(*std::move(item));
    }
    EXPECT_EQ(source.amountRead(), source.amountTotal());
    return items;
  }

  const ScratchFolder folder;
};

CardItem card(const std::string& name, const std::vector<std::string>& addresses) {
  return ContactCard{name, addresses};
}

std::string vcard(const std::string& lines) {
  return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "END:VCARD\r\n";
}

TEST_F(Cards, AreReadAsProgramsOfAllVersionsWriteThem) {
  // A phone's vCard 2.1: bare types, quoted-printable over several lines, a picture whose end looks like one.
  EXPECT_THAT(read("BEGIN:VCARD\r\nVERSION:2.1\r\nN;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:=44=76=\r\n"
                   "=C5=99;Ji=C5=99=C3=AD;;;\r\nPHOTO;ENCODING=BASE64;JPEG:AAAA=\r\n\r\n"
                   "EMAIL;INTERNET;HOME:Jiri@Vltava.example\r\nEND:VCARD\r\n"),
              ElementsAre(card("Jiří Dvř", {"jiri@vltava.example"})));
  EXPECT_THAT(read("BEGIN:VCARD\nVERSION:2.1\nFN;CHARSET=ISO-8859-1;QUOTED-PRINTABLE:Zo=EB\nEMAIL:zoe@out.example\n"
                   "AGENT:\nBEGIN:VCARD\nFN:Her agent\nEMAIL:agent@out.example\nEND:VCARD\nEND:VCARD\n"),
              ElementsAre(card("Zoë", {"zoe@out.example"})));
  // 3.0 and 4.0: folded lines, escapes, groups of properties, parameters in quotes, addresses as links and twice.
  EXPECT_THAT(
      read("\xef\xbb\xbf" +
           vcard("FN:Marsh\\, Ada\r\n  Maria\r\nitem1.EMAIL;TYPE=\"a:b;c\":mailto:Ada@Hill.example\r\n"
                 "EMAIL:ada@hill.example\r\nemail;type=pref:ada@mill.example\r\n") +
           "begin:vcard\nversion:4.0\nN:Marsh;Ben;;Dr.;\nFN:ben@out.example\nEMAIL:ben@out.example\nend:vcard\n" +
           vcard("EMAIL:a@out.example\r\nEMAIL:b@out.example\r\n")),
      ElementsAre(card("Marsh, Ada Maria", {"ada@hill.example", "ada@mill.example"}),
                  card("Ben Marsh", {"ben@out.example"}), card("", {"a@out.example", "b@out.example"})));
}

TEST_F(Cards, ThatTellNothingAreCountedWithTheReason) {
  const std::string huge = "PHOTO;ENCODING=b:" + std::string(3'000'000, 'A') + "\r\n";
  EXPECT_THAT(read(vcard("FN:Nobody\r\nEMAIL:nowhere\r\n") + vcard("EMAIL:x@out.example\r\n") +
                   vcard("KIND:group\r\nFN:All\r\nEMAIL:all@out.example\r\n") +
                   vcard("X-ADDRESSBOOKSERVER-KIND:group\r\nFN:All\r\nEMAIL:all@out.example\r\n") +
                   "BEGIN:VCARD\r\nFN:Cut\r\nEMAIL:cut@out.example\r\n" +
                   vcard(huge + "FN:Zoe\r\nEMAIL:zoe@out.example\r\n") + "BEGIN:VCARD\r\nFN:Open\r\n"),
              ElementsAre(CardSkip::noAddress, CardSkip::noName, CardSkip::nobody, CardSkip::nobody,
                          CardSkip::unreadable, card("Zoe", {"zoe@out.example"}), CardSkip::unreadable));
  EXPECT_EQ(faultOf([&] { read("Hello\n"); }), CardSourceError::holdsNoCard);
  EXPECT_EQ(faultOf([&] { readAll(folder.path() / "none.vcf"); }), CardSourceError::cannotRead);
}

TEST_F(Cards, OfAFolderComeInTheOrderOfItsFiles) {
  write("book/b.vcf", vcard("FN:B\r\nEMAIL:b@out.example\r\n"));
  write("book/sub/a.VCF", vcard("FN:A\r\nEMAIL:a@out.example\r\n"));
  write("book/c.vcf", "no card");
  write("book/.hidden/d.vcf", vcard("FN:D\r\nEMAIL:d@out.example\r\n"));
  write("book/notes.txt", "no card");
  EXPECT_THAT(readAll(folder.path() / "book"),
              ElementsAre(card("B", {"b@out.example"}), CardSkip::noCardFile, card("A", {"a@out.example"})));
  EXPECT_EQ(faultOf([&] { readAll(folder.path() / "book" / ".hidden" / ".." / ".." / "empty"); }),
            CardSourceError::cannotRead);
}

} // namespace
} // namespace orvan
