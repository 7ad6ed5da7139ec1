// Transform: the node's XML and a style sheet go through libxslt; the result comes back as text.
#include <libxml/parser.h>
#include <libxslt/transform.h>
#include <libxslt/xsltInternals.h>
#include <libxslt/xsltutils.h>

#include <memory>

#include "vnxml/common/utf.h"
#include "vnxml/common/vn_utils.h"
#include "vnxml/dom_document.h"

namespace vn {

namespace {
constexpr char16_t cTransformFailed[] = u"The XSL transformation failed: %s";

struct DocFree {
  void operator()(xmlDoc* d) const noexcept { xmlFreeDoc(d); }
};
struct SheetFree {
  void operator()(xsltStylesheet* s) const noexcept { xsltFreeStylesheet(s); }
};

UnicodeString RunXslt(const UnicodeString& AXML, const UnicodeString& AXSL) {
  std::string xml = UnicodeToUtf8(AXML), xsl = UnicodeToUtf8(AXSL);
  int opts = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  std::unique_ptr<xmlDoc, DocFree> src(xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, "UTF-8", opts));
  if (!src) throw EVnDomException(cTransformFailed, {u"the document is not well-formed"});
  std::unique_ptr<xmlDoc, DocFree> sheetDoc(
      xmlReadMemory(xsl.data(), static_cast<int>(xsl.size()), nullptr, "UTF-8", opts));
  if (!sheetDoc) throw EVnDomException(cTransformFailed, {u"the style sheet is not well-formed"});
  std::unique_ptr<xsltStylesheet, SheetFree> sheet(xsltParseStylesheetDoc(sheetDoc.get()));
  if (!sheet) throw EVnDomException(cTransformFailed, {u"the style sheet is not valid"});
  sheetDoc.release();  // owned by the style sheet now
  std::unique_ptr<xmlDoc, DocFree> result(xsltApplyStylesheet(sheet.get(), src.get(), nullptr));
  if (!result) throw EVnDomException(cTransformFailed, {u"the style sheet could not be applied"});
  xmlChar* out = nullptr;
  int len = 0;
  if (xsltSaveResultToString(&out, &len, result.get(), sheet.get()) != 0)
    throw EVnDomException(cTransformFailed, {u"the result could not be written"});
  std::string bytes(out ? reinterpret_cast<const char*>(out) : "", static_cast<size_t>(len));
  xmlFree(out);
  return Utf8ToUnicode(bytes);
}
}  // namespace

UnicodeString TVnDOMNode::Transform(std::u16string_view AXSLFile) {
  return RunXslt(GetXML(), VnLoadStringFromFile(UnicodeString(AXSLFile)));
}

UnicodeString TVnDOMNode::Transform(TVnDOMNode* AXSLNode) {
  if (!AXSLNode) throw EVnDomException(cTransformFailed, {u"no style sheet"});
  return RunXslt(GetXML(), AXSLNode->GetXML());
}

std::unique_ptr<TVnDOMDocument> TVnDOMNode::TransformToDocument(std::u16string_view AXSLFile) {
  auto doc = std::make_unique<TVnDOMDocument>();
  doc->LoadXML(Transform(AXSLFile));
  return doc;
}

std::unique_ptr<TVnDOMDocument> TVnDOMNode::TransformToDocument(TVnDOMNode* AXSLNode) {
  auto doc = std::make_unique<TVnDOMDocument>();
  doc->LoadXML(Transform(AXSLNode));
  return doc;
}

}  // namespace vn
