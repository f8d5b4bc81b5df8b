// Writes archives field by field, without the classes under test: what a file of any version holds, byte by
// byte.
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class CFieldWriter {
  public:
    // Narrow text is that of the first builds of the original platform.
    explicit CFieldWriter(bool narrowText = false) : m_narrowText(narrowText) {}

    // A new object of this class; its index for later references.
    int Object(const std::string& className) {
        const auto [known, isNew] = m_classes.emplace(className, m_lastIndex + 1);
        if (isNew) {
            ++m_lastIndex;
            Put<std::uint16_t>(0xFFFF, 1, static_cast<std::uint16_t>(className.size()));
            m_bytes.insert(m_bytes.end(), className.begin(), className.end());
        } else {
            Put<std::uint16_t>(static_cast<std::uint16_t>(0x8000 | known->second));
        }
        return ++m_lastIndex;
    }
    void Reference(int index) { Put<std::uint16_t>(static_cast<std::uint16_t>(index)); }
    void Null() { Put<std::uint16_t>(0); }
    // Version of the class, then those of the bases that have no field.
    void Version(int version) { Put<std::int32_t>(version, 1, 1); }

    template <class T, class... Values>
    void Put(Values... values) {
        (PutOne(static_cast<T>(values)), ...);
    }
    void Int(std::int32_t value) { Put<std::int32_t>(value); }
    void Real(double value) { Put<double>(value); }
    void Ticks(std::int64_t value) { Put<std::int64_t>(value); }
    // Latin-1, shorter than 255 characters.
    void Text(std::string_view text) {
        if (!m_narrowText) Put<std::uint8_t>(0xFF, 0xFE, 0xFF);
        Put<std::uint8_t>(text.size());
        for (const char c : text)
            m_narrowText ? Put<std::uint8_t>(c) : Put<std::uint16_t>(static_cast<unsigned char>(c));
    }

    const std::vector<std::uint8_t>& GetBytes() const { return m_bytes; }

  private:
    template <class T>
    void PutOne(T value) {
        const std::size_t at = m_bytes.size();
        m_bytes.resize(at + sizeof value);
        std::memcpy(&m_bytes[at], &value, sizeof value);
    }

    bool m_narrowText;
    std::vector<std::uint8_t> m_bytes;
    std::map<std::string, int> m_classes;
    int m_lastIndex = 0;
};
