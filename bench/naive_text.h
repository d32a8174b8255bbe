// The naive trace: one snprintf for each value, and a string to append to.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <type_traits>

namespace quorva::bench::naive {

// Builds the text that the codec's trace has for the same calls. Does not refuse anything.
class Trace {
public:
    Trace(std::string& out, bool inDecode) : decoding(inDecode), text(out) {}

    const bool decoding;

    void open(const char* tag)
    {
        line();
        begin(tag);
        ++depth;
    }
    void close(const char* tag)
    {
        --depth;
        line();
        end(tag);
    }
    template <class T>
    void field(const char* tag, T number)
    {
        line();
        begin(tag);
        append(std::is_signed_v<T> ? "%d" : "%u", number);
        end(tag);
    }
    void truth(const char* tag, bool value)
    {
        line();
        begin(tag);
        append("%s", value ? "true" : "false");
        end(tag);
    }
    void string(const char* tag, const char* value)
    {
        line();
        begin(tag);
        for (; *value; ++value) {
            switch (*value) {
            case '<': text += "&lt;"; break;
            case '>': text += "&gt;"; break;
            case '&': text += "&amp;"; break;
            case '\\': text += "\\\\"; break;
            default: text += *value;
            }
        }
        end(tag);
    }
    template <class E>
    void enumerator(E value, const char* (*nameOf)(int))
    {
        const int number = static_cast<int>(value);
        begin(nameOf(number));
        append("%d", number);
        end(nameOf(number));
    }
    template <class E>
    void enumeration(const char* tag, E value, const char* (*nameOf)(int))
    {
        line();
        begin(tag);
        enumerator(value, nameOf);
        end(tag);
    }
    void dump(const char* tag, const unsigned char* bytes, int count)
    {
        line();
        begin(tag);
        const bool lines = count > 16;
        for (int i = 0; i < count; ++i) {
            if (lines && i % 16 == 0) {
                ++depth;
                line();
                --depth;
            } else if (i > 0) {
                text += ' ';
            }
            append("%02x", bytes[i]);
        }
        if (lines) line();
        end(tag);
    }
    // The elements of an array. `show` adds one of them.
    template <class T, class Show>
    void elements(const T* first, std::size_t count, Show show)
    {
        for (std::size_t i = 0; i < count; ++i) {
            if (decoding) {
                line();
                begin("value");
            }
            show(first[i], i);
            if (decoding) end("value");
        }
    }
    template <class T, class Show>
    void array(const char* tag, const T* first, std::size_t count, Show show)
    {
        line();
        begin(tag);
        ++depth;
        elements(first, count, show);
        --depth;
        if (decoding && count > 0) line();
        end(tag);
    }
    void number(std::uint32_t value, std::size_t index)
    {
        if (!decoding && index > 0) text += ' ';
        append("%u", value);
    }

private:
    void line()
    {
        if (!text.empty()) text += '\n';
        for (int i = 0; i < depth; ++i) text += "  ";
    }
    void begin(const char* tag)
    {
        text += '<';
        text += tag;
        text += '>';
    }
    void end(const char* tag)
    {
        text += "</";
        text += tag;
        text += '>';
    }
    template <class T>
    [[gnu::always_inline]] void append(const char* format, T value)
    {
        char formatted[32];
        std::snprintf(formatted, sizeof formatted, format, value);
        text += formatted;
    }

    std::string& text;
    int depth = 0;
};

}  // namespace quorva::bench::naive
