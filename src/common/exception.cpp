// Exception: message storage and its UTF-8 form for what().
#include "vnxml/common/exception.h"

#include "vnxml/common/sysutils.h"
#include "vnxml/common/utf.h"

namespace vn {

Exception::Exception(UnicodeString AMessage) : FMessage(std::move(AMessage)), FWhat(UnicodeToUtf8(FMessage)) {}

Exception::Exception(std::u16string_view AFormat, std::initializer_list<TVarRec> AArgs)
    : Exception(Format(AFormat, AArgs)) {}

void Exception::SetMessage(UnicodeString AMessage) {
  FMessage = std::move(AMessage);
  FWhat = UnicodeToUtf8(FMessage);
}

TVarRec::TVarRec(std::string_view AValue) : FKind(vtString), FInt(0), FStr(Utf8ToUnicode(AValue)) {}

}  // namespace vn
