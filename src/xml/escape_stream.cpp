// VnStrToXML writing straight into a writer's stream, so that saving a document builds no
// intermediate string per text value.
#include "escape_encode.h"
#include "vnxml/common/vn_streams.h"
#include "vnxml/xml_escape.h"

namespace vn {

void VnStrToXML(const char16_t* AText, Integer ALength, TVnStringStream& AStream, bool EscapeApostrophe,
                bool EscapeQuote) {
  if (AText == nullptr || ALength <= 0) return;
  detail::EscapeRuns(AText, static_cast<size_t>(ALength),
                     detail::EscapeMask(EscapeApostrophe, EscapeQuote, false),
                     [&](const char16_t* APiece, size_t APieceLength) {
                       AStream.Add(std::u16string_view(APiece, APieceLength));
                     });
}

}  // namespace vn
