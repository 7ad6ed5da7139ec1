// A program outside the tree, built against the installed package.
#include <iostream>

#include <vnxml/vnxml.h>

int main() {
  vn::UnicodeString text = vn::Utf8ToUnicode("caf\xC3\xA9");
  std::cout << vn::UnicodeToUtf8(vn::UpperCase(text)) << " " << vn::UnicodeToUtf8(vn::IntToStr(42)) << "\n";
  return text.size() == 4 ? 0 : 1;
}
