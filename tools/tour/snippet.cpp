// Calls as whole programs, to be pasted.
#include "tour/snippet.h"

#include <algorithm>
#include <cctype>

namespace tools {
namespace {

bool has_word(const std::string& text, const std::string& word) {
  const auto in_word = [](char c) { return std::isalnum(uint8_t(c)) != 0 || c == '_'; };
  for (size_t at = 0; (at = text.find(word, at)) != std::string::npos; ++at) {
    const size_t end = at + word.size();
    if ((at == 0 || !in_word(text[at - 1])) && (end == text.size() || !in_word(text[end])))
      return true;
  }
  return false;
}

std::string indented(const std::string& lines) {
  std::string text = "  ";
  for (const char c : lines) text += c == '\n' ? "\n  " : std::string(1, c);
  return text + "\n";
}

}  // namespace

std::string program_of(const std::string& text, const std::vector<Declaration>& declarations,
                       RoiSize size) {
  const size_t line = text.rfind('\n');
  const std::string call = text.substr(line == std::string::npos ? 0 : line + 1);
  std::string body = "  StatusCode status = " + call + ";\n  return status < 0;\n}\n";
  if (line != std::string::npos) body = indented(text.substr(0, line)) + body;
  for (size_t i = declarations.size(); i-- > 0;)
    if (has_word(body, declarations[i].name)) body.insert(0, indented(declarations[i].lines));
  if (has_word(body, "roi")) body = "  RoiSize roi = {width, height};\n" + body;
  return "#include <nuqi/nuqi.h>\n#include <stdlib.h>\n\nint main(void) {\n  enum { width = " +
         std::to_string(size.width) + ", height = " + std::to_string(size.height) + " };\n" + body;
}

}  // namespace tools
