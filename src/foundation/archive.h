// The object archive: a plain little-endian stream whose meaning comes from the order in which objects write
// themselves. It is the encoding of the project file and of the parameter file handed to the engine.
//
// One object serves one store or one load and belongs to one thread. Every operation throws CArchiveException
// on a failure; the archive is then of no further use, and all that it had made for a load is destroyed with
// its holder.
#pragma once

#include "foundation/byte_stream.h"
#include "foundation/object.h"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Outils_Objets {

class CArchiveException : public std::exception {
  public:
    enum ECause {
        generic = 1,   // the stream failed, or objects nest deeper than any real file
        readOnly = 2,  // an insertion into an archive that is loading
        endOfFile = 3, // the stream ends inside a value
        writeOnly = 4, // an extraction from an archive that is storing
        badIndex = 5,  // an index that is not in the table, or an object that two holders claim
        badClass = 6,  // a class not registered, or not derived from the expected class
        badSchema = 7, // an unknown class version, or a class schema that differs
    };

    CArchiveException(ECause cause, std::string fileName) : m_cause(cause), m_fileName(std::move(fileName)) {}

    ECause GetCause() const { return m_cause; }
    // Empty when the thrower knows no file.
    const std::string& GetFileName() const { return m_fileName; }
    const char* what() const noexcept override;

  private:
    ECause m_cause;
    std::string m_fileName;
};

[[noreturn]] void AfxThrowArchiveException(CArchiveException::ECause cause, std::string fileName = {});

class CArchive {
  public:
    enum EMode { store, load };

    // `stream` and `registry` must outlive the archive. `path` is the file that the stream reads or writes,
    // empty for none: objects resolve their relative paths against its folder. A storing archive needs no
    // registry.
    CArchive(IByteStream& stream, EMode mode, const CClassRegistry* registry, std::filesystem::path path = {},
             std::size_t bufferSize = 4096);
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    bool IsStoring() const { return m_mode == store; }
    bool IsLoading() const { return m_mode == load; }
    const std::filesystem::path& GetFilePath() const { return m_path; }

    // Raw bytes. Read throws endOfFile when fewer are left.
    void Write(const void* data, std::size_t size);
    void Read(void* data, std::size_t size);

    // One scalar, little-endian, in the width of its type (a boolean takes one byte).
    template <class T>
    CArchive& operator<<(T value) {
        static_assert(std::is_arithmetic_v<T>);
        Write(&value, sizeof value);
        return *this;
    }
    template <class T>
    CArchive& operator>>(T& value) {
        static_assert(std::is_arithmetic_v<T>);
        if constexpr (std::is_same_v<T, bool>) {
            std::uint8_t byte = 0;
            Read(&byte, sizeof byte);
            value = byte != 0;
        } else {
            Read(&value, sizeof value);
        }
        return *this;
    }

    // Text, UTF-8 in memory. Stored as UTF-16, and lossless for unpaired surrogates; loads UTF-16 and old
    // narrow strings (Windows-1252).
    void WriteString(std::string_view text);
    std::string ReadString();

    // The counts of the framework's own containers (maps of strings, arrays): 16 bits, or 32 bits after
    // FFFF.
    void WriteCount(std::uint32_t count);
    std::uint32_t ReadCount();

    // An object or null. The same object written twice is stored once.
    void WriteObject(const CObject* object);
    // The object or null; it stays the archive's until somebody claims it, and is destroyed with the archive
    // if nobody does. Throws badClass unless it derives from `expected`.
    CObject* ReadObject(const CRuntimeClass& expected);
    template <class T>
    T* ReadObject() {
        return static_cast<T*>(ReadObject(T::Class()));
    }

    // Takes over the ownership of an object that this archive has read. The new owner keeps it until the load
    // has ended, as later bytes may refer to it. Throws badIndex if another holder has it, or if its own
    // Serialize has not returned yet.
    std::unique_ptr<CObject> Claim(CObject* object);
    // The objects that were read but claimed by nobody, in the order in which they were met. They may still
    // be referred to by others, so a holder of the root keeps them as long as the root.
    std::vector<std::unique_ptr<CObject>> TakeUnclaimed();

    // Writes out what is buffered. Must be called at the end of a store.
    void Close();

  private:
    static constexpr int kMaximumDepth = 400; // real files nest less than 20 objects

    void Flush();
    std::uint64_t GetRemaining() const; // bytes not read yet, buffered ones included
    std::uint32_t ReadStringLength(bool& wide);
    void WriteClass(const CRuntimeClass& runtimeClass);
    const CRuntimeClass& ReadNewClass();
    CObject* ReadNewObject(const CRuntimeClass& runtimeClass, const CRuntimeClass& expected);
    void CheckStoring() const;
    void CheckLoading() const;
    [[noreturn]] void Fail(CArchiveException::ECause cause) const;

    struct SEntry {                                  // one place of the index table while loading
        const CRuntimeClass* runtimeClass = nullptr; // of a class entry
        CObject* object = nullptr;                   // of an object entry
        std::unique_ptr<CObject> owned;              // the same object until it is claimed
        bool reading = false;                        // its Serialize has not returned
    };

    IByteStream& m_stream;
    EMode m_mode;
    const CClassRegistry* m_registry;
    std::filesystem::path m_path;
    std::vector<std::uint8_t> m_buffer;
    std::size_t m_bufferPosition = 0;                        // storing: bytes held; loading: the next byte
    std::size_t m_bufferEnd = 0;                             // loading only
    std::unordered_map<const void*, std::uint32_t> m_stored; // objects and classes, by address
    std::uint32_t m_lastIndex = 0;                           // of m_stored
    std::vector<SEntry> m_loaded;                            // by index; the first place is null's
    std::unordered_map<const CObject*, std::size_t> m_indexOf;
    int m_depth = 0;
};

} // namespace Outils_Objets
