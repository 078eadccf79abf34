#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "json/json_document.h"
#include "json/json_writer.h"
#include "ts/variant.h"

namespace ts::json {

// Property values in JSON, shared by the exact and the short form.

// The type code named by `text` ("int", "string", ...) or written as a number; false if unknown.
bool TypeCodeFromName(std::u16string_view text, std::uint32_t& code);
const char16_t* TypeCodeName(std::uint32_t code);

// Converts `v` to a value of type `type`; on failure `problem` says what was expected.
bool ReadValue(const Document& doc, const Value& v, std::uint32_t type, variant& out,
               std::u16string& problem);
void WriteValue(Writer& w, const variant& value);

// Dates are day counts from 30 December 1899 (the spreadsheet epoch); these convert the day count
// to and from "YYYY-MM-DD" or "YYYY-MM-DDTHH:MM:SS". FormatDate gives an empty text when the
// count has no such exact form.
bool ParseDate(std::u16string_view text, double& days);
std::u16string FormatDate(double days);

std::u16string Base64Encode(const std::vector<std::uint8_t>& bytes);
bool Base64Decode(std::u16string_view text, std::vector<std::uint8_t>& bytes);

}  // namespace ts::json
