// The traces of the measured messages, written by hand: as fast as can be, and as it is usually done.
//
// Both write the text that the library's stream collects in an encode pass or, where `decoding`, in a decode pass over
// the same object: `encode` or `decode` of limit.h moves the bytes, then one of these runs over the object.
#pragma once

#include "messages.h"

#include <cstddef>
#include <string>

// Into a buffer: tags that are joined at compile time, copies of fixed size, tables for numbers and enumerators, one
// check of the room for each run. Returns the length of the text, 0 where the room does not suffice or the object is no
// measured message.
namespace quorva::bench::limit {
std::size_t trace(const JobAttNotifyParams& value, bool decoding, char* text, std::size_t room);
std::size_t trace(const JobAVPSeq& value, bool decoding, char* text, std::size_t room);
std::size_t trace(const AttributeSeq& value, bool decoding, char* text, std::size_t room);
}  // namespace quorva::bench::limit

// Appended to a string: one snprintf for each value, one append for each piece of a tag.
namespace quorva::bench::naive {
void trace(const JobAttNotifyParams& value, bool decoding, std::string& text);
void trace(const JobAVPSeq& value, bool decoding, std::string& text);
void trace(const AttributeSeq& value, bool decoding, std::string& text);
}  // namespace quorva::bench::naive
