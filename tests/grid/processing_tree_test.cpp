// The rows of the processing panel over a project with every kind of sensor and instruction.
#include "document/edit_fixture.h"
#include "foundation/texts.h"
#include "grid/processing_tree.h"
#include "values/adaptors.h"

#include <functional>
#include <set>

using namespace test;
using namespace Presentation_Tarvel_Grid;
using Outils_Configuration::Cnf;

namespace {

// Keeps a tree in line with the document.
class CTreeView : public IDocumentView {
  public:
    explicit CTreeView(CProcessingTree& tree) : m_tree(tree) {}
    void OnUpdate(EHint hint, const CObject* object) override { m_tree.OnUpdate(hint, object); }

  private:
    CProcessingTree& m_tree;
};

class ProcessingTree : public CEditTest {
  protected:
    ProcessingTree() {
        Create();
        for (int kind = 0; kind < kSensorKindCount; ++kind) m_edits.AddSensor(static_cast<ESensorKind>(kind));
        for (const auto& sensor : Parameters().sensors)
            for (const auto& group : sensor->rejectionGroups)
                m_edits.Do(Edits::kAddRejectionInstruction, *group);
        m_edits.Do(Edits::kAddHorizontalFilteringInstruction, Get<CTrvSensorUsbl>());
        m_edits.Do(Edits::kAddZupt);
        m_edits.Do(Edits::kAddOutputRate);
        m_edits.Do(Edits::kAddAltitudeMode);
        m_adaptors.Configure(m_configuration);
        m_tree.Rebuild();
        m_document.AddView(&m_treeView);
    }
    ~ProcessingTree() override { m_document.RemoveView(&m_treeView); }

    static void ForEach(const CHGItem& item, const std::function<void(CHGItem&)>& visit) {
        for (std::size_t i = 0; CHGItem* child = item.GetChild(i); ++i) {
            visit(*child);
            ForEach(*child, visit);
        }
    }
    static std::string Dump(CProcessingTree& tree) {
        std::string text;
        ForEach(tree.GetGrid().GetRoot(), [&text](const CHGItem& item) {
            text += item.GetTitle() + '|' + item.GetValue() + '|' + item.GetFault() + '\n';
            EXPECT_EQ(item.GetParent()->GetChild(item.GetIndex()), &item);
        });
        return text;
    }
    // The recording is too short for any period.
    void MendPeriods() {
        ForEach(m_tree.GetGrid().GetRoot(), [](CHGItem& item) {
            if (item.GetTitle() == GetText(EText::toLabel) || item.GetTitle() == GetText(EText::end))
                item.Write("1:00:00");
        });
        EXPECT_EQ(m_tree.FindNextFault(nullptr), nullptr);
    }
    CHGItem* FindRow(const CObject& object, EText title) {
        CHGItem* found = nullptr;
        ForEach(*m_tree.Find(&object), [&](CHGItem& item) {
            if (item.GetTitle() == GetText(title) && !found) found = &item;
        });
        return found;
    }

    static const char* GetDecimalSeparator(std::size_t round) { return round % 3 == 0 ? "," : "."; }
    // Gives every quantity and every notation the next of its units and words; all have come after 8 rounds.
    void ShowIn(std::size_t round) {
        using namespace Outils_Configuration;
        // In the order of the quantities.
        constexpr std::string_view kQuantities[] = {
            "rate",         "altitude",    "misalignment", "leverArm",           "scaleFactor",
            "currentSpeed", "currentTime", "linearSpeed",  "linearAcceleration", "angularSpeed",
            "distance",     "attitude",    "crossvariance"};
        for (std::size_t row = 0; row < std::size(kSchema); ++row) {
            const SSchemaRow& key = kSchema[row];
            if (!key.section.starts_with("adaptors/")) continue;
            auto& value = m_configuration.GetValue(SKey{row});
            if (const auto words = WordsOf(key.kind); !words.empty())
                value.SetString(std::string(words[round % words.size()]));
            else if (key.kind == EKind::boolean)
                value.SetBool(round % 2 == 1);
            const auto quantity = std::ranges::find(kQuantities, key.section.substr(9)) - kQuantities;
            if (key.key != "unit" || quantity == std::ssize(kQuantities)) continue;
            const auto& units = m_adaptors.Get(static_cast<Outils_Valeurs::EQuantity>(quantity)).GetUnits();
            value.SetString(
                std::next(units.begin(), static_cast<std::ptrdiff_t>(round % units.size()))->first);
        }
        m_configuration.Set(Cnf<"adaptors/decimalSeparator">, GetDecimalSeparator(round)[0]);
        m_adaptors.Configure(m_configuration);
        m_tree.Reformat();
    }

    Outils_Valeurs::CTrvAdaptors m_adaptors;
    CProcessingTree m_tree{m_document, m_adaptors};
    CTreeView m_treeView{m_tree};
};

} // namespace

// In every unit and every notation, after values that no precision shows whole.
TEST_F(ProcessingTree, ReadsEveryShownTextBack) {
    for (std::size_t round = 0; round < 8; ++round) {
        ShowIn(round);
        ForEach(m_tree.GetGrid().GetRoot(), [round](CHGItem& item) {
            if (item.IsEditable() && item.GetKind() == ERowKind::edit)
                item.Write(std::to_string(round) + GetDecimalSeparator(round) + "123456789");
        });
        const auto before = Bytes();
        ASSERT_TRUE(m_document.Save());
        int rows = 0;
        ForEach(m_tree.GetGrid().GetRoot(), [&](CHGItem& item) {
            if (!item.IsEditable() || item.GetKind() == ERowKind::dialog) return;
            ++rows;
            EXPECT_EQ(item.Write(item.GetValue()), "")
                << round << ": " << item.GetTitle() << ' ' << item.GetValue();
        });
        EXPECT_GT(rows, 80);
        EXPECT_EQ(Bytes(), before) << round;
        EXPECT_FALSE(m_document.IsModified()) << round;
    }
}

TEST_F(ProcessingTree, KeepsTheValueOfARefusedText) {
    const auto before = Bytes();
    const std::string texts[] = {
        "", "abc", "nan", "1e999", "12 parsec", "31/12/40000 0:00:00", std::string(10'000'000, '9')};
    for (const EText title : {EText::begin, EText::defaultOutputRate, EText::latitude, EText::algorithm})
        for (const std::string& text : texts)
            EXPECT_NE(FindRow(Parameters(), title)->Write(text), "")
                << GetText(title) << " took " << text.substr(0, 20);
    EXPECT_EQ(Bytes(), before);
}

TEST_F(ProcessingTree, WritesAsTheEditsDo) {
    auto& zupt = *Parameters().zupts[0];
    FindRow(zupt, EText::mode)->Choose(3);
    EXPECT_EQ(zupt.mode, 3);
    FindRow(Get<CTrvSensorDvl>(), EText::xv2)->Write("12,5 cm");
    EXPECT_DOUBLE_EQ(Get<CTrvSensorDvl>().leverArm->xv2, 0.125);
    const auto written = Bytes();
    zupt.mode = 0;
    Get<CTrvSensorDvl>().leverArm->xv2 = 0.0;
    auto values = ValuesOf(Edits::kChangeZupt, zupt);
    values.Get<&CTrvZupt::mode>() = 3;
    m_edits.Do(Edits::kChangeZupt, zupt, values);
    auto dvl = ValuesOf(Edits::kChangeSensorDvl, Get<CTrvSensorDvl>());
    dvl.Get<&CTrvSensorDvl::leverArm>().xv2 = 0.125;
    m_edits.Do(Edits::kChangeSensorDvl, Get<CTrvSensorDvl>(), dvl);
    EXPECT_EQ(Bytes(), written);
}

// After every edit the rows are those of a tree that is made new, and the rows of other objects are the same.
TEST_F(ProcessingTree, FollowsEveryEdit) {
    const auto check = [this](const char* edit) {
        CProcessingTree fresh(m_document, m_adaptors);
        fresh.Rebuild();
        EXPECT_EQ(Dump(m_tree), Dump(fresh)) << edit;
    };
    const CHGItem* const kept = m_tree.Find(&Get<CTrvSensorGps>());
    m_edits.Do(Edits::kAddZupt);
    check("ZUPT");
    m_edits.Do(Edits::kAddOutputRate);
    check("output rate");
    m_edits.Do(Edits::kAddAltitudeMode);
    check("altitude mode");
    m_edits.Do(Edits::kAddRejectionInstruction, *Get<CTrvSensorDvl>().rejectionGroups[1]);
    check("rejection");
    m_edits.Do(Edits::kAddHorizontalFilteringInstruction, Get<CTrvSensorUsbl>());
    check("filtering");
    m_edits.AddSensor(ESensorKind::gps);
    check("sensor");
    ASSERT_TRUE(AddFile("external.tarin"));
    check("file");
    EXPECT_EQ(FindRow(*Parameters().zupts[0], EText::fromLabel)->Write("0:00:05"), "");
    check("fault");
    m_edits.Do(Edits::kRemoveZupt, *Parameters().zupts[0]); // the others move up
    check("first of several");
    // From the last to the first, so that every list loses all that it has.
    for (bool removed = true; removed;) {
        removed = false;
        const CHGItem* last = nullptr;
        ForEach(m_tree.GetGrid().GetRoot(), [&](const CHGItem& item) {
            if (m_tree.CanRemove(&item) && &item != kept) last = &item;
        });
        if (last) removed = m_tree.Remove(last);
        check("removal");
    }
    EXPECT_EQ(Parameters().sensors.size(), 1u);
    EXPECT_TRUE(Parameters().zupts.empty());
    EXPECT_TRUE(Parameters().externalFiles.empty());
    EXPECT_EQ(m_tree.Find(&Get<CTrvSensorGps>()), kept);
    EXPECT_FALSE(m_tree.CanRemove(m_tree.Find(Parameters().mainInputFile.get())));
    EXPECT_FALSE(m_tree.CanRemove(m_tree.GetParametersItem()));
}

TEST_F(ProcessingTree, WalksTheFaults) {
    MendPeriods();
    auto& zupt = *Parameters().zupts[0];
    auto& rate = *Parameters().outputRates[0];
    EXPECT_EQ(FindRow(zupt, EText::toLabel)->Write("0:00:01"), "");
    EXPECT_EQ(FindRow(zupt, EText::fromLabel)->Write("0:00:02"), "");
    EXPECT_EQ(FindRow(rate, EText::value)->Write("0"), "");
    ASSERT_GE(m_tree.GetFaultCount(), 2u);
    const CHGItem* first = m_tree.FindNextFault(nullptr);
    EXPECT_EQ(first, FindRow(zupt, EText::fromLabel));
    EXPECT_NE(first->GetFault(), "");
    EXPECT_TRUE(m_tree.Find(&zupt)->GetParent()->HasFaultBelow());
    EXPECT_EQ(FindRow(zupt, EText::mode)->GetFault(), "");
    const CHGItem* second = m_tree.FindNextFault(first);
    EXPECT_EQ(second, FindRow(zupt, EText::toLabel));
    const CHGItem* third = m_tree.FindNextFault(second);
    EXPECT_EQ(third, FindRow(rate, EText::value));
    EXPECT_EQ(m_tree.FindNextFault(third), first); // round again
    FindRow(zupt, EText::toLabel)->Write("0:00:03");
    FindRow(rate, EText::value)->Write("1");
    EXPECT_EQ(m_tree.GetFaultCount(), 0u);
    EXPECT_EQ(FindRow(zupt, EText::fromLabel)->GetFault(), "");
    EXPECT_EQ(FindRow(Parameters(), EText::begin)->Write("2:00:00"), "");
    EXPECT_NE(FindRow(Parameters(), EText::begin)->GetFault(), "");
}

TEST_F(ProcessingTree, BlamesTheValueOfTheUnit) {
    MendPeriods();
    Parameters().nelixConfiguration->roughMisalignment = 99;
    m_treeView.OnUpdate(hintSensorChanged, &Get<CTrvSensorGps>());
    EXPECT_EQ(m_tree.FindNextFault(nullptr),
              FindRow(*Parameters().nelixConfiguration, EText::roughMisalignment));
    EXPECT_EQ(m_tree.GetParametersItem()->GetFault(), "");
}

TEST_F(ProcessingTree, GroupsLieDirectlyUnderTheirSensor) {
    for (const CTrvSensor* sensor :
         {static_cast<CTrvSensor*>(&Get<CTrvSensorDvl>()), static_cast<CTrvSensor*>(&Get<CTrvSensorGps>())}) {
        std::set<std::string> titles;
        for (const auto& group : sensor->rejectionGroups) {
            const CHGItem* row = m_tree.Find(group->instructions[0].get())->GetParent();
            EXPECT_EQ(row->GetParent(), m_tree.Find(sensor));
            EXPECT_EQ(m_tree.FindGroup(row), group.get());
            titles.insert(row->GetTitle());
        }
        EXPECT_EQ(titles.size(), sensor->rejectionGroups.size());
        EXPECT_FALSE(titles.contains(""));
    }
}

TEST_F(ProcessingTree, OnlyExternalFilesAreOffset) {
    const CTrvDataFile* external = AddFile("external.tarin");
    ASSERT_TRUE(external);
    for (const CTrvDataFile* file :
         {const_cast<const CTrvDataFile*>(Parameters().mainInputFile.get()),
          const_cast<const CTrvDataFile*>(Parameters().outputFile.get()), external})
        EXPECT_EQ(FindRow(*file, EText::timeOffset)->IsVisible(), file == external);
}

TEST_F(ProcessingTree, ExpertsSeeStandardDeviations) {
    ASSERT_TRUE(m_document.Save());
    Outils::CMessageQueue queue;
    CTrvDocument document(m_host, queue, m_configuration, true);
    ASSERT_TRUE(document.OpenDocument(m_folder / "p.tarprj"));
    CProcessingTree tree(document, m_adaptors);
    tree.Rebuild();
    int sections = 0;
    ForEach(tree.GetGrid().GetRoot(), [&sections](CHGItem& item) {
        if (item.GetTitle() == GetText(EText::stdDevDefaultTitle)) ++sections;
        const bool isWritten = item.IsEditable() && item.GetKind() != ERowKind::dialog;
        EXPECT_EQ(isWritten ? item.Write(item.GetValue()) : "", "") << item.GetTitle();
        const bool isLeast = item.GetTitle() == GetText(EText::minimumValue);
        const CHGItem& first = isLeast ? *item.GetParent()->GetChild(0) : item;
        EXPECT_TRUE(!isLeast || first.GetTitle() == GetText(EText::stdDevDefaultTitle));
    });
    EXPECT_EQ(sections, 8); // the Doppler log has two
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ProcessingTree, SharesTheListOfAKind) {
    m_edits.Do(Edits::kAddZupt);
    const auto first = FindRow(*Parameters().zupts[0], EText::mode)->GetChoices();
    const auto second = FindRow(*Parameters().zupts[1], EText::mode)->GetChoices();
    EXPECT_EQ(first.data(), second.data());
    EXPECT_THAT(first, testing::ElementsAre("Live", "None", "Static 10 m/s", "Static 0.1 m/s", "Autostatic",
                                            "Autostatic bench", "ANC"));
}

TEST_F(ProcessingTree, ActsOnTheSelectedObject) {
    auto& dvl = Get<CTrvSensorDvl>();
    const CHGItem* instruction = m_tree.Find(dvl.rejectionGroups[1]->instructions[0].get());
    EXPECT_EQ(m_tree.FindGroup(instruction->GetChild(0)), dvl.rejectionGroups[1].get());
    EXPECT_EQ(m_tree.FindSensor(instruction), &dvl);
    EXPECT_EQ(m_tree.FindUsbl(instruction), nullptr);
    EXPECT_EQ(m_tree.FindUsbl(m_tree.Find(&Get<CTrvSensorUsbl>())), &Get<CTrvSensorUsbl>());
    EXPECT_EQ(m_tree.FindGroup(m_tree.Find(&dvl)), nullptr);
}

// A question may be asked between two projects, and the panel is painted meanwhile.
TEST_F(ProcessingTree, LetsGoOfAClosedProject) {
    class CFirstRefresh : public IDocumentView {
      public:
        explicit CFirstRefresh(CProcessingTree& tree) : m_tree(tree) {}
        void OnUpdate(EHint, const CObject*) override {
            if (m_rows < 0) m_rows = static_cast<int>(m_tree.GetGrid().GetRoot().GetChildCount());
        }
        int m_rows = -1;

      private:
        CProcessingTree& m_tree;
    } first(m_tree);
    ASSERT_TRUE(m_document.Save());
    m_document.AddView(&first);
    EXPECT_TRUE(m_document.OpenDocument(m_folder / "p.tarprj"));
    m_document.RemoveView(&first);
    EXPECT_EQ(first.m_rows, 0);
    EXPECT_GT(m_tree.GetGrid().GetRoot().GetChildCount(), 0u);
}

TEST_F(ProcessingTree, SaysWhatIsWrongWithHiddenValues) {
    // The fixture's document is nobody's expert: the standard deviations have no rows.
    auto& gps = Get<CTrvSensorGps>();
    auto& hidden = *gps.stdDevInstruction;
    EXPECT_EQ(m_tree.Find(&hidden), m_tree.Find(&gps));
    MendPeriods();
    hidden.isDefault = false;
    hidden.begin = ToStoredTime(CDateTimeSpan::FromSeconds(20));
    hidden.end = ToStoredTime(CDateTimeSpan::FromSeconds(10));
    m_treeView.OnUpdate(hintGpsStdDevChanged, &hidden);
    EXPECT_GT(m_tree.GetFaultCount(), 0U);
    const CHGItem* fault = m_tree.FindNextFault(nullptr);
    EXPECT_EQ(fault, m_tree.Find(&gps));
    EXPECT_TRUE(fault && fault->GetFault().find(GetText(EText::gridExpertFault)) != std::string::npos);
    // Nothing is known of a sensor that has gone, or of what belonged to it.
    ASSERT_TRUE(m_edits.Do(Edits::kRemoveSensor, gps));
    EXPECT_EQ(m_tree.Find(&hidden), nullptr);
}

TEST_F(ProcessingTree, NotesWhatASensorHas) {
    auto& gps = Get<CTrvSensorGps>();
    auto& run = Parameters();
    run.begin = ToStoredTime(CDateTimeSpan::FromSeconds(10));
    run.end = ToStoredTime(CDateTimeSpan::FromSeconds(20));
    const auto at = [](double seconds) { return CDateTimeSpan::FromSeconds(seconds); };
    std::optional<CProcessingTree::SExtent> extent;
    m_tree.SetExtents([&extent](const CTrvDataFileChannel&) { return extent; });
    const auto note = [&] { return m_tree.Find(&gps)->GetNote(); };
    const auto outside = std::string(GetText(EText::noteOutsidePeriod));
    EXPECT_THAT(note(), testing::HasSubstr(GetText(EText::noteNoPackets)));
    extent = {1234, at(12), at(13)};
    EXPECT_THAT(note(), testing::HasSubstr("1234 packets, 00:00:12.000 to 00:00:13.000"));
    EXPECT_THAT(note(), testing::Not(testing::HasSubstr(outside)));
    for (const auto& [first, last] : {std::pair(0.0, 9.9), std::pair(20.1, 30.0)}) {
        extent = {2, at(first), at(last)};
        EXPECT_THAT(note(), testing::HasSubstr(outside)) << first;
    }
    // On the clock of the recording, the file begins later.
    gps.channel->file->timeOffset = ToStoredTime(at(5));
    extent = {2, at(0), at(9.9)};
    EXPECT_THAT(note(), testing::Not(testing::HasSubstr(outside)));
}
