// Values as JSON and back. Needs the inspector's library, quorvapixdr::inspect.
//
//     std::string text = quorva::toJson(request);                       // JobSOAParameters request
//     auto again = quorva::fromJson<JobSOAParameters>(text);            // releases its contents when it is destroyed
//     quorva::toJson(number, quorva::coder::AttributeId);
//
//   struct           {"id": 7, ...}, every field in order
//   union            {"kind": "AKowner", "owner": "Anna"}; the discriminant alone where no member follows
//   arrays           [ ... ]
//   optional         null or the value
//   string           "Anna"; {"hex": "e4"} if it is not UTF-8; null for a null pointer
//   opaque           {"text": "ABC"} if all bytes are printable ASCII, else {"hex": "0a"}
//   enumeration      "DSopen"; a number without an enumerator as a number
//   Boolean          true, false; 2 to 255 as numbers
//   Float            the shortest decimal number; {"bits": "7fc00001"} if it is not finite
//   other built-in   7
//
// `fromJson` also takes members in any order, the number of an enumerator, and {"hex"} or {"text"} for any string or
// opaque. It knows the names of the enumerators of the library's modules, and of those that `addModules` added.
#pragma once

#include <quorvapixdr/codec.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace quorva {

#pragma GCC visibility push(default)

// Why `fromJson` refuses a text. what() has the text of each error on a line of its own.
class JsonError : public std::runtime_error {
public:
    struct Entry {
        // JSON Pointer (RFC 6901), "/aValues/2/value/jobName"; empty for the whole text. An unknown or missing field is
        // an error of its object.
        std::string path;
        std::string sentence;  // what is wrong, and what was expected
        // Place of the value in the text, or that of the name of an unknown or repeated field. They count from 1; a
        // column is a byte.
        std::size_t line;
        std::size_t column;

        // "3:14: /aValues/2/value/jobName: expected ..."
        std::string text() const;
    };

    // The text is not JSON, or its values nest too deeply.
    explicit JsonError(Entry malformation);
    // The text is JSON, but not the form of a value of the type. `areMore`: it has more errors than these.
    JsonError(std::vector<Entry> found, bool areMore);
    ~JsonError() override;

    bool isMalformed() const { return malformed; }

    // At least one and at most twenty.
    const std::vector<Entry>& errors() const { return entries; }

    // A sentence that the text has more errors; empty if these are all. `what` ends with it.
    const char* remainder() const;

private:
    bool malformed;
    bool isCut = false;
    std::vector<Entry> entries;
};

// The JSON form of an object, in one line, or in lines with `indent` blanks for each level. The object must be one that
// an encode could read, or one that a decode left. A variable-length array or opaque whose elements are null counts as
// empty. Throws std::domain_error if values nest deeper than `fromJson` reads, or if the type contains a type of
// another library without a description.
std::string toJson(const Type& type, const void* object, unsigned indent = 0);

// Fills a zeroed object. A release pass releases what is allocated. Takes linear time, and memory in proportion to the
// text. Throws JsonError; after any exception the object is zero again.
void fromJson(const Type& type, std::string_view text, void* object);

#pragma GCC visibility pop

namespace detail {

template <class T>
const Type& describedBy(Coder<T> coder)
{
    if (!coder.description) throw std::domain_error(std::string(coder.name) + " has no description, as JSON needs");
    return coder.description();
}

}  // namespace detail

template <class T>
std::string toJson(const T& value, Coder<T> coder = coderOf<T>, unsigned indent = 0)
{
    return toJson(detail::describedBy(coder), static_cast<const void*>(&value), indent);
}

// A type that has a coder of its own: fromJson<JobId>(R"({"service": 5, "job": 231})").
template <class T>
Owned<T> fromJson(std::string_view text, Coder<T> coder = coderOf<T>)
{
    Owned<T> value(coder);
    fromJson(detail::describedBy(coder), text, static_cast<void*>(&*value));
    return value;
}

}  // namespace quorva
