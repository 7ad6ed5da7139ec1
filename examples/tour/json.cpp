// Tour: a JSON document loaded, walked, edited through objects and interfaces, and saved.
#include <cstdio>

#include "sections.h"
#include "vnxml/common/utf.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/json_document.h"

namespace tour {

namespace {
void Print(const char* ALabel, const vn::UnicodeString& AText) {
  std::printf("%s%s\n", ALabel, vn::UnicodeToUtf8(AText).c_str());
}
}  // namespace

void Json() {
  std::puts("== JSON: load, walk, edit, save ==");
  vn::TVnJSONDocument doc(u"{\"menu\":\"Caf\\u00e9\",\"dishes\":[{\"name\":\"Soup\",\"price\":4.50},"
                          u"{\"name\":\"Cr\\u00eape\",\"price\":3}]}");

  // Walk with plain objects: members by name, array items by index. Numbers stay the text
  // they were read as until a caller asks for a native value.
  vn::TVnJSONArray* dishes = doc.GetMember(u"dishes")->GetAsArray();
  for (vn::Integer i = 0; i < dishes->Count(); ++i) {
    vn::TVnJSONBase* dish = dishes->Item(i);
    std::printf("%s costs %.2f\n", vn::UnicodeToUtf8(dish->FindMember(u"name")->GetAsString()).c_str(),
                dish->FindMember(u"price")->GetAsDouble());
  }

  // Edit through counted interfaces: the nodes stay owned by the tree.
  vn::IPtr<vn::IVnJSONObject> tea = doc.GetRootValue()->FindMember(u"dishes")->GetValue().As<vn::IVnJSONArray>()
                                         ->AddValueIntf1(vn::jdtObject).As<vn::IVnJSONObject>();
  tea->AddMemberIntf3(u"name", vn::jdtString, u"Tea");
  tea->AddMemberIntf4(u"price", vn::Variant(1.2));
  doc.GetMember(u"open", {vn::jsoCreate})->SetAsBoolean(true);

  // Compact text keeps a blank after colons and commas; "/" and characters from U+0100 up are
  // escaped, Latin-1 letters are not.
  Print("compact: ", doc.GetAsJSON());
  Print("formatted:\n", doc.GetFormattedJSON());

  // Saving picks the code page; UTF-8 with a byte-order mark is what SaveToFile writes.
  vn::TVnStringStream utf8(vn::cVnCodePageUTF8);
  doc.SaveToStream(utf8, false, vn::cVnCodePageUTF8, true);
  std::printf("UTF-8 with mark: %zu bytes\n", utf8.GetBytesView().size());

  // Every operation is declared on every node; a kind that lacks one says so.
  try {
    dishes->FindMember(u"name");
  } catch (const vn::Exception& e) {
    Print("refused: ", e.Message());
  }
}

}  // namespace tour
