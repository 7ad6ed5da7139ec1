// Shared by the path tests: a selection written as the JSON of its nodes, and failure checks.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "vnxml/common/utf.h"
#include "vnxml/json_path.h"

namespace vn::test {

/// The JSON text of each selected node, joined by blanks.
inline std::string Sel(TVnJSONBase& ANode, std::u16string_view APath, TVnJDOCSelectOptions AOptions = {}) {
  std::unique_ptr<TVnJSONArray> list = ANode.CreateNodeList(APath, AOptions);
  std::string text;
  for (Integer i = 0; i < list->ChildCount(); ++i) text += (i ? " " : "") + UnicodeToUtf8(list->Child(i)->GetAsJSON());
  return text;
}

/// Runs AAction and checks the EVnJSONException it raises (ACode -1: any exception of class
/// AClass with AMessage).
template <class F>
void ExpectFailure(F&& AAction, Integer ACode, const UnicodeString& AMessage, const char16_t* AClass = nullptr) {
  try {
    AAction();
    ADD_FAILURE() << "no exception";
  } catch (const Exception& e) {
    if (AClass) {
      EXPECT_EQ(UnicodeToUtf8(e.ClassName()), UnicodeToUtf8(AClass));
    }
    if (ACode >= 0) {
      auto* json = dynamic_cast<const EVnJSONException*>(&e);
      ASSERT_NE(json, nullptr) << UnicodeToUtf8(e.Message());
      EXPECT_EQ(json->GetCode(), ACode);
    }
    EXPECT_EQ(UnicodeToUtf8(e.Message()), UnicodeToUtf8(AMessage));
  }
}

}  // namespace vn::test
