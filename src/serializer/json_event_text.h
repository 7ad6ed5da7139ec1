// The compact JSON text of one value, rebuilt from a reader's events. Names and values arrive
// as the reader found them, escapes kept, so the text reads back to the same value.
#pragma once

#include <string_view>

#include "vnxml/common/types.h"
#include "vnxml/json_contract.h"

namespace vn::detail {

class JSONEventText {
 public:
  void StartObject() { Open(u'{'); }
  void StartArray() { Open(u'['); }
  void Member(std::u16string_view AName) {
    if (!FFirst) FText += u',';
    FText += u'"';
    FText += AName;
    FText += u"\":";
    FFirst = false;
    FAfterName = true;
  }
  void Value(TVnJSONSimpleDataType AType, std::u16string_view AText) {
    Separate();
    if (AType == jdtString) {
      FText += u'"';
      FText += AText;
      FText += u'"';
    } else {
      FText += AType == jdtNull || AText.empty() ? std::u16string_view(u"null") : AText;
    }
  }
  /// Closes the innermost object or array; true when that ends the value.
  bool Close() {
    FText += FClosers.back();
    FClosers.pop_back();
    FFirst = false;
    return FClosers.empty();
  }
  /// Nesting inside the value: 0 before it starts and after it ends.
  size_t Depth() const noexcept { return FClosers.size(); }
  const UnicodeString& Text() const noexcept { return FText; }

 private:
  void Open(char16_t AOpen) {
    Separate();
    FText += AOpen;
    FClosers += AOpen == u'{' ? u'}' : u']';
    FFirst = true;
  }
  void Separate() {
    if (FAfterName)
      FAfterName = false;
    else if (!FFirst)
      FText += u',';
    FFirst = false;
  }
  UnicodeString FText;
  UnicodeString FClosers;
  bool FFirst = true;
  bool FAfterName = false;
};

}  // namespace vn::detail
