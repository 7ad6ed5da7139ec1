// The handler's road of a load: a reader, a TVnJSONHandler on the target, one parse.
#include <memory>

#include "json/doc_load.h"
#include "vnxml/json_form_reader.h"
#include "vnxml/json_handler.h"
#include "vnxml/json_reader.h"
#include "vnxml/json_values.h"

namespace vn::detail {

void CheckJSONText(std::u16string_view AText, TVnJSONDataType AKind) {
  if (AText.find_first_of(u"\\%") != std::u16string_view::npos) (void)VnJSONtoStr(AText, AKind);
}

void LoadWithHandler(TVnJSONBase& ATarget, TStream& AStream, Word ACodePage, bool AFormURLEncoded) {
  std::unique_ptr<TVnJSONReader> reader = AFormURLEncoded ? std::make_unique<TVnFormURLEncodedJSONReader>()
                                                          : std::make_unique<TVnJSONReader>();
  auto handler = std::make_unique<TVnJSONHandler>(reader.get(), &ATarget);
  handler->SetAutoDestroy(false);
  reader->SetContentHandler(IPtr<IVnJSONContentHandler>(static_cast<IVnJSONContentHandler*>(handler.get())));
  reader->SetErrorHandler(IPtr<IVnJSONErrorHandler>(static_cast<IVnJSONErrorHandler*>(handler.get())));
  struct Clear {
    TVnJSONReader& R;
    ~Clear() {
      R.SetContentHandler(nullptr);
      R.SetErrorHandler(nullptr);
    }
  } clear{*reader};
  reader->ParseStream(&AStream, ACodePage, u"");
}

}  // namespace vn::detail
