// Recognises the form of an input.

#include "forms.h"

#include "hex_readers.h"
#include "support/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorva::inspect {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// True if the contents have no control bytes but those of blanks, and are UTF-8.
bool isText(std::string_view contents)
{
    return support::isUtf8(contents) && std::ranges::none_of(contents, [](char c) {
               const auto byte = static_cast<unsigned char>(c);
               return (byte < 0x20 && !hex::isBlank(c)) || byte == 0x7F;
           });
}

// True for ASCII in UTF-16 with its mark, as some shells redirect output.
bool isWideText(std::string_view contents)
{
    if (contents.size() < 4 || (!contents.starts_with("\xFF\xFE") && !contents.starts_with("\xFE\xFF"))) return false;
    const std::size_t high = contents[0] == '\xFF' ? 1 : 0;
    for (std::size_t i = 2; i < contents.size(); ++i)
        if ((contents[i] == '\0') != (i % 2 == high)) return false;
    return true;
}

class Recogniser {
public:
    Recogniser(std::string_view from, std::initializer_list<InputForm> forms, std::size_t longest)
        : contents(from), possible(forms), most(longest)
    {
    }

    Recognised recognise()
    {
        if (can(InputForm::pcap) && isCapture(contents)) return {InputForm::pcap, "read as pcap", {}};
        if (isWideText(contents)) fail("text in UTF-16; convert it to UTF-8");
        if (!isText(contents)) return asRaw();
        const std::size_t start = contents.find_first_not_of(hex::blanks);
        const std::string_view text = start == hex::none ? std::string_view() : contents.substr(start);
        if (text.starts_with('<') && !text.starts_with("<Buffer ")) {
            if (can(InputForm::trace)) return {InputForm::trace, "read as trace", {}};
            fail("a trace or another XML document, which is not read");
        }
        std::optional<InputError> whyNotHex;
        std::optional<HexText> hexText;
        if (can(InputForm::hex)) try {
                hexText = readHex(contents, most);
            } catch (const InputError& error) {
                whyNotHex.emplace(error);
            }
        if (can(InputForm::json) &&
            (!can(InputForm::hex) || text.starts_with('{') || text.starts_with('[') || text.starts_with('"')) &&
            nlohmann::json::accept(contents)) {
            if (hexText) fail("this can be json or hex; name one with --from");
            return {InputForm::json, "read as json", {}};
        }
        if (can(InputForm::json) && !hexText && beginsAsJson(text)) return {InputForm::json, "read as json", {}};
        const auto base64 = can(InputForm::base64) ? readBase64() : std::nullopt;
        if (hexText && base64 && isLikelyBase64(text, *hexText, *base64))
            fail("these digits can be base64 or hex; name one with --from");
        if (hexText) return {InputForm::hex, "read as hex: " + hexText->what, std::move(hexText->bytes)};
        if (base64) return {InputForm::base64, "read as base64", *base64};
        if (can(InputForm::json) && !can(InputForm::hex))
            return {InputForm::json, "read as json", {}};  // its reader tells the error
        if (whyNotHex) throw *whyNotHex;
        return asRaw();
    }

private:
    bool can(InputForm form) const { return std::ranges::find(possible, form) != possible.end(); }

    [[noreturn]] void fail(const std::string& sentence) const { throw InputError::at(contents, 0, sentence); }

    Recognised asRaw() const
    {
        if (!can(InputForm::raw)) fail("not text: a message as raw bytes is not read here");
        if (contents.size() > most)
            fail("a message of " + std::to_string(contents.size()) + " bytes, longer than " + std::to_string(most));
        return {InputForm::raw, "read as raw", Bytes(contents.begin(), contents.end())};
    }

    // True if a text can only be JSON, although it has an error that its reader tells.
    static bool beginsAsJson(std::string_view text)
    {
        const std::size_t next = text.empty() ? hex::none : text.find_first_not_of(hex::blanks, 1);
        if (next == hex::none) return false;
        return (text[0] == '{' && text[next] == '"') || (text[0] == '[' && (text[next] == '{' || text[next] == '"'));
    }

    // The bytes of base64 without blanks in its lines, with which words would be base64, too.
    std::optional<Bytes> readBase64() const
    {
        for (const std::string_view line : support::linesOf(contents))
            if (line.substr(0, line.find_last_not_of(hex::blanks) + 1).find_first_of(hex::blanks) != hex::none)
                return std::nullopt;
        try {
            Bytes bytes = parseBase64(contents, most);
            if (bytes.size() % 4 != 0 || isLikelyHex(contents)) return std::nullopt;
            return bytes;
        } catch (const InputError&) {
            return std::nullopt;
        }
    }

    // True if a text is more likely hex with a wrong digit: few characters of base64 are decimal digits or `a` to `f`.
    static bool isLikelyHex(std::string_view text)
    {
        const auto digits =
            std::ranges::count_if(text, [](char c) { return hex::digitOf(c) >= 0 && (c < 'A' || c > 'F'); });
        return 2 * static_cast<std::size_t>(digits) > text.size();
    }

    // True if a text of digits is base64 of whole units that begin with a small number, as many messages do.
    static bool isLikelyBase64(std::string_view text, const HexText& hexText, const Bytes& base64)
    {
        return text.starts_with("AAA") && hexText.what == "hexadecimal digits" && base64.size() % 4 == 0;
    }

    std::string_view contents;
    std::initializer_list<InputForm> possible;
    std::size_t most;
};

}  // namespace

bool isCapture(std::string_view contents)
{
    constexpr std::string_view pcapMagics[] = {"\xA1\xB2\xC3\xD4"sv, "\xD4\xC3\xB2\xA1"sv, "\xA1\xB2\x3C\x4D"sv,
                                               "\x4D\x3C\xB2\xA1"sv};
    if (std::ranges::find(pcapMagics, contents.substr(0, 4)) != std::end(pcapMagics)) return contents.size() >= 24;
    const std::string_view order = contents.substr(std::min<std::size_t>(8, contents.size()), 4);
    return contents.starts_with("\x0A\x0D\x0D\x0A") && (order == "\x1A\x2B\x3C\x4D"sv || order == "\x4D\x3C\x2B\x1A"sv);
}

const char* formName(InputForm form)
{
    constexpr const char* names[] = {"raw", "hex", "base64", "json", "pcap", "trace"};
    return names[static_cast<std::size_t>(form)];
}

Recognised recognise(std::string_view contents, std::initializer_list<InputForm> possible, std::size_t most)
{
    if (contents.starts_with(byteOrderMark)) contents.remove_prefix(byteOrderMark.size());
    return Recogniser(contents, possible, most).recognise();
}

}  // namespace quorva::inspect
