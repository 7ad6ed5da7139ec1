// vnx: a command-line tool over vnxml. See README.md for the subcommands and their output.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "commands.h"

namespace {

int Usage() {
  std::fprintf(stderr,
               "usage: vnx <command> [options] FILE|-\n"
               "commands:\n"
               "  events [--json|--xml|--form] [--multi-root] FILE|-   print the reader's events, one per line\n"
               "  format [--json|--xml] [--plain] [--encoding NAME] [--bom] FILE|-   write the document formatted\n"
               "  check [--json|--xml] FILE|-     load the document; report the first error\n"
               "  select [--json|--xml] [--value] [--create] FILE|- PATH   print the nodes a path selects\n"
               "  to-json [--plain] FILE|-        write the document's root element as JSON\n"
               "  to-xml [--plain] FILE|-         load JSON (or XML) into a document, write it as XML\n");
  return vnx::kExitUsage;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return Usage();
  std::vector<std::string> args(argv + 2, argv + argc);
  if (std::strcmp(argv[1], "events") == 0) return vnx::Events(args);
  if (std::strcmp(argv[1], "format") == 0) return vnx::Format(args);
  if (std::strcmp(argv[1], "check") == 0) return vnx::Check(args);
  if (std::strcmp(argv[1], "select") == 0) return vnx::Select(args);
  if (std::strcmp(argv[1], "to-json") == 0) return vnx::ToJson(args);
  if (std::strcmp(argv[1], "to-xml") == 0) return vnx::ToXml(args);
  return Usage();
}
