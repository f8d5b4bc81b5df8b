#include "foundation/positioning.h"
#include "foundation/serialize.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

using namespace Outils_Objets;
using Metier_Positioning::CLeverArm;
using Metier_Positioning::CPosition;

namespace {

using Bytes = std::vector<std::uint8_t>;

class CNode : public TRuntimeClass<CNode, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CNode";

    std::string name;
    std::unique_ptr<CNode> child;
    CNode* parent = nullptr;
    std::vector<std::unique_ptr<CPosition>> positions;
    std::int16_t added = -7;

    void Serialize(CArchive& archive) override {
        CSchema schema(archive, 2);
        CTrvObject::Serialize(archive);
        schema.Field(name);
        schema.Owned(child);
        schema.Reference(parent);
        schema.OwnedList(positions);
        schema.Since(2).Field(added);
    }
};

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}
Bytes Ascii(std::string_view text) { return Bytes(text.begin(), text.end()); }

const Bytes kRoots = {1, 0, 0, 0, 1, 0, 0, 0}; // the versions of CTrvObject and CObjetMetier
const Bytes kNewNode = Bytes{0xFF, 0xFF, 1, 0, 5, 0} + Ascii("CNode");
// A node of version 2 up to its child, without a name.
const Bytes kNodeStart = Bytes{2, 0, 0, 0} + kRoots + Bytes{0xFF, 0xFE, 0xFF, 0};
// And from its parent on, all null.
const Bytes kNodeEnd = Bytes{0, 0, 0, 0, 0, 0, 5, 0};

void LoadNode(CArchive& archive) { archive.Claim(archive.ReadObject<CNode>()); }

class Archive : public testing::Test {
  protected:
    Archive() { m_registry.Register<CNode, CPosition, CLeverArm, CTrvObject>(); }

    Bytes Store(const std::function<void(CArchive&)>& store, std::size_t bufferSize = 4096) {
        CMemoryStream stream;
        CArchive archive(stream, CArchive::store, nullptr, "/data/x.file", bufferSize);
        store(archive);
        archive.Close();
        return stream.GetBytes();
    }
    void Load(const Bytes& bytes, const std::function<void(CArchive&)>& load, std::size_t bufferSize = 4096) {
        CMemoryStream stream(bytes);
        CArchive archive(stream, CArchive::load, &m_registry, "/data/x.file", bufferSize);
        load(archive);
    }
    // 0 when the load goes well.
    int CauseOf(const Bytes& bytes, const std::function<void(CArchive&)>& load) {
        try {
            Load(bytes, load);
        } catch (const CArchiveException& exception) {
            m_fileName = exception.GetFileName();
            return exception.GetCause();
        }
        return 0;
    }
    CClassRegistry m_registry;
    std::string m_fileName;
};

TEST_F(Archive, ScalarsAreLittleEndian) {
    const Bytes bytes = Store([](CArchive& archive) {
        archive << true << std::uint8_t{0xAB} << std::int16_t{-2} << std::int64_t{-2} << 1.0f << -2.0;
        for (std::uint32_t count : {0xFFFEu, 0xFFFFu}) archive.WriteCount(count);
    });
    const Bytes integers = {1, 0xAB, 0xFE, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    const Bytes floats = {0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0xC0};
    EXPECT_EQ(bytes, integers + floats + (Bytes{0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}));
    bool flag = false;
    std::uint8_t u8 = 0;
    std::int16_t i16 = 0;
    std::int64_t i64 = 0;
    float f = 0;
    double d = 0;
    const auto load = [&](CArchive& archive) {
        archive >> flag >> u8 >> i16 >> i64 >> f >> d;
        EXPECT_EQ(archive.ReadCount(), 0xFFFEu);
        EXPECT_EQ(archive.ReadCount(), 0xFFFFu);
    };
    Load(bytes, load, 16);
    EXPECT_TRUE(flag && u8 == 0xAB && i16 == -2 && i64 == -2 && f == 1.0f && d == -2.0);
}

TEST_F(Archive, StringPrefixesGrowAtTheirThresholds) {
    const std::pair<std::size_t, Bytes> rows[] = {{0, {0}},
                                                  {254, {254}},
                                                  {255, {0xFF, 0xFF, 0}},
                                                  {65533, {0xFF, 0xFD, 0xFF}},
                                                  {65534, {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0, 0}},
                                                  {65535, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0}}};
    for (const auto& [length, lengthBytes] : rows) {
        std::string text(length, 'x');
        if (length >= 2) text.replace(0, 2, "\xF0\x9F\x9A\xA2"); // one character of two units
        const Bytes bytes = Store([&](CArchive& archive) { archive.WriteString(text); });
        const Bytes prefix = Bytes{0xFF, 0xFE, 0xFF} + lengthBytes;
        ASSERT_EQ(bytes.size(), prefix.size() + 2 * length);
        EXPECT_TRUE(std::equal(prefix.begin(), prefix.end(), bytes.begin())) << length;
        Load(bytes, [&](CArchive& archive) { EXPECT_EQ(archive.ReadString(), text); });
    }
}

TEST_F(Archive, OldNarrowStringsAreRead) {
    const Bytes longer(300, 'y');
    const Bytes bytes =
        Bytes{2, 'a', 0xE9} + Bytes{0xFF, 44, 1} + longer + Bytes{0xFF, 0xFF, 0xFF, 1, 0, 0, 0, 0x80};
    Load(bytes, [&](CArchive& archive) {
        EXPECT_EQ(archive.ReadString(), "a\xC3\xA9");
        EXPECT_EQ(archive.ReadString(), std::string(300, 'y'));
        EXPECT_EQ(archive.ReadString(), "\xE2\x82\xAC");
    });
}

TEST_F(Archive, ObjectsAndClassesShareOneTable) {
    CNode parent, child;
    child.parent = &parent;
    child.added = 300;
    const std::vector<const CObject*> roots{nullptr, &parent, &child, &child}; // class 1, objects 2 and 3
    const Bytes expected = Bytes(2) + kNewNode + kNodeStart + Bytes(8) + Bytes{0xF9, 0xFF} + Bytes{1, 0x80} +
                           kNodeStart + Bytes{0, 0, 2, 0, 0, 0, 0, 0, 44, 1} + Bytes{3, 0};
    const auto store = [](const std::vector<const CObject*>& objects) {
        return [&objects](CArchive& archive) {
            for (const CObject* object : objects) archive.WriteObject(object);
        };
    };
    for (const std::size_t bufferSize : {16u, 4096u}) {
        EXPECT_EQ(Store(store(roots), bufferSize), expected);
        const auto load = [&](CArchive& archive) {
            std::vector<const CObject*> read;
            for (std::size_t i = 0; i < roots.size(); ++i)
                read.push_back(archive.ReadObject(CObject::Class()));
            EXPECT_EQ(Store(store(read)), expected);
            EXPECT_EQ(archive.TakeUnclaimed().size(), 2u);
        };
        Load(expected, load, bufferSize);
    }
}

TEST_F(Archive, LargeIndexesTakeTheBigForm) {
    std::vector<CObjetMetier> plain(0x7FFF); // class 1, objects 2 to 0x8000
    CLeverArm first, second;                 // class 0x8001, objects 0x8002 and 0x8003
    std::vector<const CObject*> objects;
    for (const auto& object : plain) objects.push_back(&object);
    objects.insert(objects.end(), {&first, &second, &plain[0x7FFE - 2], &plain[0x7FFF - 2], &first});
    const Bytes bytes = Store([&](CArchive& archive) {
        for (const CObject* object : objects) archive.WriteObject(object);
    });
    const Bytes tail = {0xFE, 0x7F, 0xFF, 0x7F, 0xFF, 0x7F, 0, 0, 0xFF, 0x7F, 2, 0x80, 0, 0};
    ASSERT_EQ(Bytes(bytes.end() - 14, bytes.end()), tail);
    const auto secondAt = bytes.end() - 14 - (4 + 4 + 24) - 6;
    EXPECT_EQ(Bytes(secondAt, secondAt + 6), (Bytes{0xFF, 0x7F, 1, 0x80, 0, 0x80}));
    m_registry.Register<CObjetMetier>();
    Load(bytes, [&](CArchive& archive) {
        std::map<const CObject*, const CObject*> read;
        for (const CObject* object : objects) {
            const CObject* found = archive.ReadObject(object->GetRuntimeClass());
            EXPECT_EQ(read.emplace(object, found).first->second, found);
        }
    });
}

TEST_F(Archive, HostileBytesGiveTheirCause) {
    const auto twoObjects = [](CArchive& archive) {
        archive.ReadObject(CObject::Class());
        archive.ReadObject(CObject::Class());
    };
    const auto claimedTwice = [](CArchive& archive) {
        auto root = archive.Claim(archive.ReadObject<CNode>());
        archive.Claim(static_cast<CNode&>(*root).child.get());
    };
    const auto string = [](CArchive& archive) { archive.ReadString(); };
    const Bytes node = kNewNode + kNodeStart + Bytes{0, 0} + kNodeEnd;
    Bytes otherSchema = node;
    otherSchema[2] = 2;
    Bytes laterVersion = node;
    laterVersion[kNewNode.size()] = 3;
    const Bytes lever =
        Bytes{0xFF, 0xFF, 1, 0, 9, 0} + Ascii("CLeverArm") + Bytes{1, 0, 0, 0, 1, 0, 0, 0} + Bytes(24);
    const struct {
        const char* what;
        Bytes bytes;
        std::function<void(CArchive&)> load;
        int cause;
        const char* fileName = "/data/x.file";
    } rows[] = {
        {"index not in the table", {1, 0}, LoadNode, 5},
        {"big index not in the table", {0xFF, 0x7F, 0xFF, 0xFF, 0xFF, 0x7F}, LoadNode, 5},
        {"class index 0", {0, 0x80}, LoadNode, 5},
        {"big class index not in the table", {0xFF, 0x7F, 9, 0, 0, 0x80}, LoadNode, 5},
        {"class where an object is meant", node + Bytes{1, 0}, twoObjects, 5},
        {"object where a class is meant", node + Bytes{2, 0x80}, twoObjects, 5},
        {"class unknown", Bytes{0xFF, 0xFF, 1, 0, 9, 0} + Ascii("CStranger"), LoadNode, 6},
        {"class not derived", lever, LoadNode, 6},
        {"member of another class", kNewNode + kNodeStart + lever, LoadNode, 6},
        {"schema", otherSchema, LoadNode, 7},
        {"version", laterVersion, LoadNode, 7, ""},
        {"class name longer than the file", {0xFF, 0xFF, 1, 0, 0xFF, 0xFF, 'C'}, LoadNode, 3},
        {"wide string of 4 GB", Bytes{0xFF, 0xFE} + Bytes(8, 0xFF), string, 3, ""},
        {"wide string short by one byte", {0xFF, 0xFE, 0xFF, 2, 'a', 0, 'b'}, string, 3, ""},
        {"narrow string of 2 GB", Bytes(6, 0xFF) + Bytes{0x7F, 'a'}, string, 3, ""},
        {"child claimed twice",
         kNewNode + kNodeStart + Bytes{1, 0x80} + kNodeStart + Bytes(2) + kNodeEnd + kNodeEnd, claimedTwice,
         5},
        {"object its own member", kNewNode + kNodeStart + Bytes{2, 0} + kNodeEnd, LoadNode, 5},
        {"null element", kNewNode + kNodeStart + Bytes{0, 0, 0, 0, 9, 0, 0, 0, 0, 0}, LoadNode, 5, ""}};
    for (const auto& row : rows) {
        EXPECT_EQ(CauseOf(row.bytes, row.load), row.cause) << row.what;
        EXPECT_EQ(m_fileName, row.fileName) << row.what;
    }
}

TEST_F(Archive, NestingIsBounded) {
    const auto nested = [](int depth) {
        Bytes bytes = kNewNode + kNodeStart;
        for (int i = 1; i < depth; ++i) bytes = std::move(bytes) + Bytes{1, 0x80} + kNodeStart;
        bytes = std::move(bytes) + Bytes{0, 0};
        for (int i = 0; i < depth; ++i) bytes = std::move(bytes) + kNodeEnd;
        return bytes;
    };
    for (const int depth : {400, 401, 100000})
        EXPECT_EQ(CauseOf(nested(depth), LoadNode), depth > 400) << depth;
}

TEST_F(Archive, WrongDirectionAndFailingStreamThrow) {
    EXPECT_EQ(CauseOf({1, 2, 3, 4}, [](CArchive& archive) { archive << 1; }), 2);
    EXPECT_EQ(CauseOf({}, [](CArchive& archive) { archive.WriteObject(nullptr); }), 2);
    struct CFullDisk : CMemoryStream {
        bool Write(const void*, std::size_t) override { return false; }
    } stream;
    CArchive archive(stream, CArchive::store, nullptr);
    int value = 1;
    EXPECT_THROW((archive << value) >> value, CArchiveException);
    EXPECT_THROW(archive.Close(), CArchiveException);
}

} // namespace
