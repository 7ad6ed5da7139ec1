// Tour: selecting JSON nodes by path: members, indexes, slices, recursive search, filters,
// alternatives, creation, and what a bad path says.
#include <cstdio>

#include "sections.h"
#include "vnxml/common/utf.h"
#include "vnxml/json_path.h"

namespace tour {

namespace {
void Show(vn::TVnJSONDocument& ADoc, std::u16string_view APath, vn::TVnJDOCSelectOptions AOptions = {}) {
  std::unique_ptr<vn::TVnJSONArray> nodes = ADoc.CreateNodeList(APath, AOptions);
  std::printf("%-44s ->", vn::UnicodeToUtf8(APath).c_str());
  for (vn::Integer i = 0; i < nodes->Count(); ++i)
    std::printf(" %s", vn::UnicodeToUtf8(nodes->Item(i)->GetAsJSON()).c_str());
  std::printf("\n");
}
}  // namespace

void JsonPaths() {
  std::puts("== JSON paths: select, filter, create ==");
  vn::TVnJSONDocument doc(u"{\"menu\":{\"dishes\":[{\"name\":\"Soup\",\"price\":4.5,\"vegan\":true},"
                          u"{\"name\":\"Steak\",\"price\":19},{\"name\":\"Tart\",\"price\":6,\"vegan\":false}],"
                          u"\"drinks\":{\"tea\":{\"price\":2}}}}");

  // Steps, indexes from either end, slices and unions; a result lists nodes of the tree.
  Show(doc, u"$.menu.dishes[0].name");
  Show(doc, u"$.menu.dishes[-1].name");
  Show(doc, u"$.menu.dishes[(@.length-2)].name");
  Show(doc, u"$.menu.dishes[0:3:2].name");
  Show(doc, u"$.menu.dishes[*]['name','price']");

  // ".." runs the step at every depth; a node's own matches come before its descendants'.
  Show(doc, u"$..price");

  // Filters compare as numbers, booleans or texts. A comparison that can't be made (Steak has
  // no "vegan") drops the candidate once it is reached, so the sure test goes first.
  Show(doc, u"$.menu.dishes[?(@.price < 10)].name");
  Show(doc, u"$.menu.dishes[?(@.name == 'Steak' || @.vegan == true)].name");
  Show(doc, u"$.menu.dishes[?(!@.vegan)].name");

  // Alternatives are joined; the first node alone comes from SelectSingleNode.
  Show(doc, u"$.menu.drinks.tea.price | $.menu.dishes[1].price");
  std::printf("first price: %g\n", doc.SelectSingleNode(u"$..price")->GetAsDouble());

  // jsoCreate adds a missing member with a null value; jsoRaise fails on an empty result.
  doc.SelectSingleNode(u"$.menu.drinks.coffee", {vn::jsoCreate})->SetAsDouble(2.5);
  std::printf("created: %s\n", vn::UnicodeToUtf8(doc.SelectSingleNode(u"$.menu.drinks")->GetAsJSON()).c_str());
  for (const char16_t* bad : {u"$.menu.wine", u"$.menu[?(@.price = 2)]", u"menu"}) {
    try {
      doc.CreateNodeList(bad, {vn::jsoRaise});
    } catch (const vn::EVnJSONException& e) {
      std::printf("%s: code %d, %s\n", vn::UnicodeToUtf8(bad).c_str(), e.GetCode(), e.what());
    }
  }
}

}  // namespace tour
