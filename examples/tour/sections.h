// sections.h: the tour's sections, one file each; main.cpp runs them in order.
#pragma once

#include <string>

namespace tour {

/// Folder of the bundled sample files (examples/data).
const std::string& DataDir();

void Encodings();
void Scanner();
void Sax();
void Document();
void Paths();
void Json();
void JsonPaths();
void Form();
void Bridges();
void Objects();
void Schema();
void PlatformDom();

}  // namespace tour
