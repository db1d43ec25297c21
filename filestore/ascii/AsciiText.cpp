#include "filestore/ascii/AsciiText.h"

#include <cctype>
#include <fstream>
#include <sstream>

namespace ascii_text {

std::string readFile(char const* path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::string();
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string strip(std::string const& text) {
  std::size_t const first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return std::string();
  std::size_t const last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}

std::string lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::vector<std::string> lines(char const* text) {
  std::vector<std::string> out;
  if (text == nullptr) return out;
  std::string const s(text);
  std::size_t at = 0;
  while (at < s.size()) {
    std::size_t end = s.find('\n', at);
    if (end == std::string::npos) end = s.size();
    std::size_t stop = end;
    if (stop > at && s[stop - 1] == '\r') --stop;
    out.push_back(s.substr(at, stop - at));
    at = end + 1;
  }
  return out;
}

std::vector<std::string> words(std::string const& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  std::string word;
  while (in >> word) out.push_back(word);
  return out;
}

namespace {

std::vector<std::string> commaItems(std::string const& line) {
  std::vector<std::string> out;
  if (strip(line).empty()) return out;
  std::size_t at = 0;
  while (at <= line.size()) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t')) ++at;
    std::string item;
    std::size_t end;
    if (at < line.size() && line[at] == '"') {
      std::size_t const close = line.find('"', at + 1);
      item = line.substr(at + 1, (close == std::string::npos ? line.size() : close) - at - 1);
      end = close == std::string::npos ? line.size() : line.find(',', close);
    } else {
      end = line.find(',', at);
      item = strip(line.substr(at, end == std::string::npos ? std::string::npos : end - at));
    }
    out.push_back(item);
    if (end == std::string::npos) break;
    at = end + 1;
  }
  return out;
}

}  // namespace

std::vector<std::string> items(std::string const& line, char itemSeparator) {
  if (itemSeparator == ',') return commaItems(line);
  std::vector<std::string> out;
  std::size_t at = 0;
  auto separator = [](char c) { return c == ' ' || c == '\t' || c == ',' || c == '\r'; };
  while (at < line.size()) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == '\r')) ++at;
    if (at >= line.size()) break;
    std::string item;
    if (line[at] == '"') {
      std::size_t const end = line.find('"', at + 1);
      item = line.substr(at + 1, (end == std::string::npos ? line.size() : end) - at - 1);
      at = end == std::string::npos ? line.size() : end + 1;
    } else {
      std::size_t end = at;
      while (end < line.size() && !separator(line[end])) ++end;
      item = line.substr(at, end - at);
      at = end;
    }
    out.push_back(item);
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == '\r')) ++at;
    if (at < line.size() && line[at] == ',') ++at;
  }
  return out;
}

bool isNumber(char const* text) {
  if (text == nullptr) return false;
  std::string const s = strip(text);
  if (s.empty()) return false;
  std::size_t k = 0;
  if (s[k] == '+' || s[k] == '-') ++k;
  bool digits = false;
  bool blankAfterDigit = false;
  for (; k < s.size(); ++k) {
    char const c = s[k];
    if (std::isdigit(static_cast<unsigned char>(c))) {
      if (blankAfterDigit) return false;
      digits = true;
    } else if (c == '.') {
      // Dots are not counted.
    } else if (c == ' ' || c == '\t') {
      if (digits) blankAfterDigit = true;
    } else {
      return false;
    }
  }
  return digits;
}

bool isNumericLine(std::string const& line) {
  std::vector<std::string> const all = items(line);
  if (all.empty()) return false;
  for (std::string const& item : all)
    if (!isNumber(item.c_str())) return false;
  return true;
}

}  // namespace ascii_text
