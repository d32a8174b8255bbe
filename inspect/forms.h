// The forms of an input, and how the form of one is recognised.
#pragma once

#include "input.h"

#include <initializer_list>

namespace quorva::inspect {

enum class InputForm { raw, hex, base64, json, pcap, trace };

const char* formName(InputForm form);

// True if the first bytes of an input are those of a pcap or pcapng file.
bool isCapture(std::string_view contents);

struct Recognised {
    InputForm form = InputForm::raw;
    std::string phrase;  // for a user: "read as hex: hexdump -C"
    Bytes bytes;         // the message, if the form is raw, hex or base64
};

// Finds the form of an input that the user has not named, among those that the caller can read. The first that fits is
// the answer:
//
// 1. pcap: the input begins as a pcap or pcapng file.
// 2. raw: it is not text, that is, it has bytes that no text has.
// 3. trace: the text begins with `<` (but not with `<Buffer `, which is hex).
// 4. json: the text is a JSON object, array or string. If the caller reads no message (hex), any JSON value.
// 5. hex, if readHex reads it.
// 6. base64, if parseBase64 reads whole units from it, no blanks are in its lines, and it is not more likely hex with a
//    wrong digit: at most half of its characters are decimal digits or `a` to `f`.
//
// Throws InputError if no form fits (with hex's reason where hex is possible), or if a text can be two of the forms:
// JSON and hex, such as `[0, 0, 0, 5]`, or hex and base64, such as "AAAAAAAAAAAAAAAA".
Recognised recognise(std::string_view contents, std::initializer_list<InputForm> possible,
                     std::size_t most = longestMessage);

}  // namespace quorva::inspect
