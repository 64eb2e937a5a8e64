#include "tools/zqmsg/page/message_page.h"

#include <openssl/sha.h>
#include <zqxml/platform/base64.h>

#include <array>
#include <cstdio>

#include "tools/zqmsg/page/field_rows.h"
#include "tools/zqmsg/page/markup.h"
#include "tools/zqmsg/page_assets.h"

namespace zqxml::tool {
namespace {

// The source expression that allows an inline style or script: Content Security Policy Level 3,
// section 2.3.1.
std::string hashSource(std::string_view inlineText) {
  std::array<unsigned char, SHA256_DIGEST_LENGTH> digest;
  SHA256(reinterpret_cast<const unsigned char*>(inlineText.data()), inlineText.size(), digest.data());
  return "'sha256-" + UlBase64::Encode({reinterpret_cast<const char*>(digest.data()), digest.size()}) + "'";
}

std::string policy() {
  return "default-src 'none'; style-src " + hashSource(kPageStyle) + "; script-src " +
         hashSource(kPageScript) + "; base-uri 'none'; form-action 'none'";
}

// 1234567 as "1,234,567".
std::string grouped(std::uint64_t number) {
  std::string text = std::to_string(number);
  for (std::size_t at = text.size(); at > 3;) text.insert(at -= 3, 1, ',');
  return text;
}

std::string fact(std::string_view name, const std::string& value) {
  return "<div><dt>" + std::string(name) + "</dt><dd>" + value + "</dd></div>\n";
}

std::string sizeText(std::optional<std::uint64_t> bytes) {
  return bytes ? grouped(*bytes) + " bytes" : "cannot be written";
}

std::string tagText(std::uint32_t tag) {
  std::array<char, 16> text;
  std::snprintf(text.data(), text.size(), "0x%08X", tag);
  return text.data();
}

constexpr std::string_view kTools = R"html(<div class="tools" role="search">
<input type="search" id="search" placeholder="Filter fields" aria-label="Filter fields by name or value" autocomplete="off" spellcheck="false">
<button type="button" id="expand">Expand all</button>
<button type="button" id="collapse">Collapse all</button>
<output id="found" for="search" aria-live="polite"></output>
</div>
)html";

}  // namespace

std::string messagePage(const XNMessageBase& message, const PageFacts& facts, bool showSecrets) {
  FieldRows fields(showSecrets);
  fields.append(message);
  const std::string name = htmlText(message.getTagName());

  std::string page;
  page.reserve(fields.html().size() + kPageStyle.size() + kPageScript.size() + 4096);
  page += "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
  page += "<meta http-equiv=\"Content-Security-Policy\" content=\"" + policy() + "\">\n";
  page += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
  page += "<title>" + name + "</title>\n<style>" + std::string(kPageStyle) + "</style>\n</head>\n<body>\n";
  page += "<header>\n<h1>" + name + "</h1>\n<dl class=\"facts\">\n";
  page += fact("Tag id", tagText(message.getTagID()));
  page += fact("Fields", grouped(fields.rows()));
  page += fact("XML", sizeText(facts.xmlBytes));
  page += fact("Binary", sizeText(facts.binaryBytes));
  if (!showSecrets) page += fact("Secrets", "masked");
  page += "</dl>\n";
  page += kTools;
  page += "</header>\n<main id=\"message\">\n" + fields.html() + "</main>\n";
  page += "<p class=\"none\" id=\"nothing\"" +
          std::string(fields.rows() == 0 ? ">No field is set." : " hidden>No field matches.") + "</p>\n";
  page += "<script>" + std::string(kPageScript) + "</script>\n</body>\n</html>\n";
  return page;
}

}  // namespace zqxml::tool
