#include "base/unicode.h"

#include <cstdint>

namespace vexa {

namespace {

bool is_high_surrogate(uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool is_low_surrogate(uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

void append_utf8(std::string& out, uint32_t code_point) {
    auto put = [&](uint32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (code_point < 0x80) {
        put(code_point);
    } else if (code_point < 0x800) {
        put(0xC0 | (code_point >> 6));
        put(0x80 | (code_point & 0x3F));
    } else if (code_point < 0x10000) {
        put(0xE0 | (code_point >> 12));
        put(0x80 | ((code_point >> 6) & 0x3F));
        put(0x80 | (code_point & 0x3F));
    } else {
        put(0xF0 | (code_point >> 18));
        put(0x80 | ((code_point >> 12) & 0x3F));
        put(0x80 | ((code_point >> 6) & 0x3F));
        put(0x80 | (code_point & 0x3F));
    }
}

uint32_t byte_at(std::string_view text, size_t k) { return static_cast<unsigned char>(text[k]); }

// The surrogate whose three bytes start at text[k], or 0 when there is none.
uint32_t surrogate_at(std::string_view text, size_t k) {
    if (k + 3 > text.size() || byte_at(text, k) != 0xED) return 0;
    const uint32_t second = byte_at(text, k + 1);
    const uint32_t third = byte_at(text, k + 2);
    if (second < 0xA0 || second > 0xBF || (third & 0xC0) != 0x80) return 0;
    return 0xD000 | ((second & 0x3F) << 6) | (third & 0x3F);
}

}  // namespace

bool utf8_from_java(std::string_view modified, std::string& out) {
    out.clear();
    out.reserve(modified.size());
    size_t k = 0;
    while (k < modified.size()) {
        if (byte_at(modified, k) == 0xC0 && k + 1 < modified.size() &&
            byte_at(modified, k + 1) == 0x80) {
            return false;
        }
        const uint32_t high = surrogate_at(modified, k);
        if (is_high_surrogate(high)) {
            const uint32_t low = surrogate_at(modified, k + 3);
            if (is_low_surrogate(low)) {
                append_utf8(out, 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00));
                k += 6;
                continue;
            }
        }
        out.push_back(modified[k]);
        ++k;
    }
    return true;
}

bool utf16_from_utf8(std::string_view text, std::u16string& out) {
    out.clear();
    out.reserve(text.size());
    size_t k = 0;
    while (k < text.size()) {
        const uint32_t lead = byte_at(text, k);
        size_t length = 0;
        uint32_t code_point = 0;
        if (lead < 0x80) {
            length = 1;
            code_point = lead;
        } else if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
            code_point = lead & 0x1F;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            code_point = lead & 0x0F;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            code_point = lead & 0x07;
        } else {
            return false;
        }
        if (k + length > text.size()) return false;
        for (size_t m = 1; m < length; ++m) {
            const uint32_t next = byte_at(text, k + m);
            if ((next & 0xC0) != 0x80) return false;
            code_point = (code_point << 6) | (next & 0x3F);
        }
        // The shortest form only, and nothing beyond the last plane.
        static constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (code_point < least[length] || code_point > 0x10FFFF) return false;
        if (code_point >= 0x10000) {
            out.push_back(static_cast<char16_t>(0xD800 + ((code_point - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((code_point - 0x10000) & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(code_point));
        }
        k += length;
    }
    return true;
}

std::string utf8_from_utf16(std::u16string_view text) {
    std::string out;
    out.reserve(text.size() * 3);
    for (size_t k = 0; k < text.size(); ++k) {
        const uint32_t unit = text[k];
        if (is_high_surrogate(unit) && k + 1 < text.size() && is_low_surrogate(text[k + 1])) {
            append_utf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[k + 1] - 0xDC00u));
            ++k;
        } else {
            append_utf8(out, unit);
        }
    }
    return out;
}

}  // namespace vexa
