#include "foundation/texts.h"
#include "graph/change_query.h"
#include "graph/csv_export.h"
#include "graph/cursor_steps.h"
#include "graph/dive.h"
#include "graph/forms.h"
#include "graph/stack_text.h"

#include <fstream>

using namespace test;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

class GraphCommands : public Dive {
  protected:
    CTrv1DGraphMeasurePortlet& Measure(std::size_t index) {
        return dynamic_cast<CTrv1DGraphMeasurePortlet&>(*Stack().GetPortlets()[index]);
    }
    SChannelKey Channel(Metier_Tarvel::CTrvDataFile& file, const char* name) {
        return {&file, file.FindChannel(name)->id};
    }
    std::size_t CountLines(const std::filesystem::path& path) {
        std::ifstream file(path);
        std::size_t lines = 0;
        for (std::string line; std::getline(file, line);) ++lines;
        return lines;
    }
};

TEST_F(GraphCommands, FirstChangeKeepsTheDefaultGraphs) {
    OpenAndLoad();
    std::vector<const CTrv1DGraphPortlet*> before;
    for (const auto& portlet : Stack().GetPortlets()) before.push_back(portlet.get());
    m_viewState.SetRange(before[0]->GetKey(), SRange{1, 2});
    const auto* curve = Stack().GetPortlets()[0]->GetPlot().GetSeries()[0].get();
    m_document->SetModifiedFlag(false);
    EXPECT_TRUE(m_loader->SaveDefaults());
    EXPECT_TRUE(m_document->IsModified());
    ASSERT_EQ(Stack().GetPortlets().size(), before.size());
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_EQ(Stack().GetPortlets()[i].get(), before[i]);
        EXPECT_TRUE(before[i]->GetGraph());
    }
    EXPECT_EQ(before[0]->GetPlot().GetSeries()[0].get(), curve);
    EXPECT_TRUE(before[0]->GetCurve(curve));
    EXPECT_EQ(Measure(0).GetRange(), (SRange{1, 2}));

    Stack().Select(1);
    m_loader->MoveSelected(-1);
    EXPECT_EQ(Stack().GetPortlets()[0].get(), before[1]);
    EXPECT_EQ(Stack().GetSelected(), before[1]);
    EXPECT_EQ(Measure(1).GetRange(), (SRange{1, 2}));
    m_loader->MoveSelected(-1); // is the first
    EXPECT_EQ(Stack().GetPortlets()[0].get(), before[1]);
}

TEST_F(GraphCommands, CursorStepsBySamplesAndStates) {
    OpenAndLoad();
    EText said = Outils_Texte::kNoText;
    CTrv1DCursorSteps steps(*m_document, m_viewState, [&](EText text) { said = text; });
    const SChannelKey navigation = Channel(Recording(), "NELIX_NAV"), depth = Channel(Recording(), "DEPTH");
    m_loader->ShowPeriod({Seconds(100), Seconds(200)});
    const struct {
        const char* what;
        std::function<void()> step;
        double cursor;
    } rows[] = {{"from the middle", [&] { steps.Step(navigation, 1); }, 151},
                {"ten", [&] { steps.Step(navigation, -10); }, 141},
                {"a held key",
                 [&] {
                     for (int i = 0; i < 5; ++i) steps.Step(navigation, 1);
                 },
                 146},
                {"another channel", [&] { steps.Step(depth, 1); }, 200},
                {"to the end", [&] { steps.Step(navigation, 1000); }, 300},
                {"back to the change", [&] { steps.StepToChange(depth, 0, false); }, 200},
                {"no other change", [&] { steps.StepToChange(depth, 0, false); }, 200}};
    for (const auto& row : rows) {
        row.step();
        ASSERT_TRUE(RunUntil([&] { return !steps.IsBusy(); }));
        EXPECT_EQ(m_viewState.GetCursor(ECursor::first), Seconds(row.cursor)) << row.what;
    }
    EXPECT_EQ(said, EText::noOtherState);
    EXPECT_LE(m_viewState.GetView().period.start, Seconds(200)) << "the cursor stays in sight";
    m_viewState.SetCursor(ECursor::first, Seconds(0));
    steps.StepToChange(depth, 0, true);
    ASSERT_TRUE(RunUntil([&] { return !steps.IsBusy(); }));
    EXPECT_EQ(m_viewState.GetCursor(ECursor::first), Seconds(200));
}

TEST_F(GraphCommands, SamplesAreFoundInTheirFile) {
    OpenAndLoad();
    const auto address =
        m_document->GetFiles()->GetAddress(Recording(), Channel(Recording(), "DEPTH").channel);
    CTrvViewValueDataQuery query(address, Seconds(180), {});
    ASSERT_EQ(query.Execute(), EQueryEnd::done);
    ASSERT_TRUE(query.TakePacket());
    EXPECT_EQ(query.GetPlace().date, Seconds(200));
    // The date itself is in the file at that place, after the header of the packet.
    std::ifstream file(m_folder / "dive.tarin", std::ios::binary);
    std::string bytes(200, '\0');
    file.seekg(query.GetPlace().position.Get());
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const std::int64_t ticks = Seconds(200).GetTicks();
    EXPECT_LT(bytes.find(std::string(reinterpret_cast<const char*>(&ticks), sizeof ticks)), 64u);
    CTrvViewValueDataQuery outside(address, Seconds(1000), {});
    EXPECT_EQ(outside.Execute(), EQueryEnd::done);
    EXPECT_FALSE(outside.TakePacket());
}

TEST_F(GraphCommands, VisibleDataBecomesTables) {
    OpenAndLoad();
    m_loader->ShowPeriod({Seconds(50), Seconds(149.5)});
    Load();
    const auto save = [this](const char* name, bool cancel) {
        CTrv1DCsvExport data(*m_document, Stack(), m_adaptors);
        EXPECT_FALSE(data.IsEmpty());
        std::optional<CTrv1DCsvExport::SOutcome> outcome;
        data.Start(m_folder / name, [&](const auto& end) { outcome = end; });
        if (cancel) data.Cancel();
        EXPECT_TRUE(RunUntil([&] { return outcome.has_value(); }));
        EXPECT_EQ(outcome->end, cancel ? CTrv1DCsvExport::EEnd::cancelled : CTrv1DCsvExport::EEnd::done);
    };
    save("all.csv", false);
    EXPECT_EQ(CountLines(m_folder / "all dive.tarin NELIX_NAV.csv"), 1 + 100u);
    EXPECT_EQ(CountLines(m_folder / "all dive.tarout MORVEX_STD.csv"), 1 + 71u);
    save("none.csv", true);
    for (const auto& entry : std::filesystem::directory_iterator(m_folder / ""))
        EXPECT_FALSE(entry.path().filename().string().starts_with("none")) << entry.path();

    for (const auto& portlet : Stack().GetPortlets())
        portlet->GetPlot().GetSeries()[kResult]->SetVisible(false);
    save("one.csv", false);
    std::ifstream file(m_folder / "one.csv");
    std::string heading, first;
    std::getline(file, heading);
    std::getline(file, first);
    EXPECT_TRUE(heading.starts_with("Date [s];")) << heading;
    EXPECT_NE(heading.find("Latitude [°]"), std::string::npos) << heading;
    EXPECT_TRUE(first.starts_with("50.0000000;")) << first;
    EXPECT_NE(first.find(";43.005;"), std::string::npos) << first;

    Parameters().hasUtcReference = true;
    Parameters().utcReference.SetDateTime(2026, 3, 14, 10, 0, 0, 0);
    Tell(hintDataFileTimeOffsetChanged, &Recording());
    Load();
    save("dated.csv", false);
    std::ifstream dated(m_folder / "dated.csv");
    std::getline(dated, heading);
    std::getline(dated, first);
    EXPECT_TRUE(heading.starts_with("Date [UTC];")) << heading;
    EXPECT_TRUE(first.starts_with("2026-03-14T10:00:50.0000000Z;")) << first;
}

TEST_F(GraphCommands, FormsTakeWhatIsTyped) {
    OpenAndLoad();
    m_loader->SaveDefaults();
    auto& graph = dynamic_cast<Metier_Tarvel_Graphics::CTrv1DGraphMeasure&>(
        *m_document->GetProject()->graphSettings->graphs[2]);
    auto& curve = *graph.curves[0];
    const std::tuple<const char*, const char*, EText> curves[] = {{" up ", "-1", Outils_Texte::kNoText},
                                                                  {" ", "1", EText::labelMissing},
                                                                  {"up", "0", EText::factorRefused},
                                                                  {"up", "x", EText::factorRefused},
                                                                  {"up", "2,5", Outils_Texte::kNoText}};
    for (const auto& [label, factor, refused] : curves) {
        CCurveForm form(*m_document, curve);
        form.GetLines()[0].text = label;
        form.GetLines()[1].choice = 2;
        form.GetLines()[2].choice = static_cast<std::size_t>(ELineStyle::dot);
        form.GetLines()[3].text = factor;
        const auto refusal = form.OnOK();
        ASSERT_EQ(refusal.has_value(), refused != Outils_Texte::kNoText) << factor;
        EXPECT_EQ(refusal ? refusal->message : "", refusal ? FormatText(refused, {factor}) : "");
    }
    EXPECT_EQ(curve.label, "up");
    const SCurveLook look{0xFFE69F00, ELineStyle::dot};
    EXPECT_EQ(ReadLook(curve.color), look);
    EXPECT_EQ(Measure(2).GetPlot().GetSeries()[0]->GetLineStyle(), ELineStyle::dot);
    EXPECT_EQ(Measure(2).GetPlot().GetSeries()[0]->GetColor(), look.colour);
    CCurveForm again(*m_document, curve);
    EXPECT_FALSE(again.OnOK().has_value());
    EXPECT_EQ(ReadLook(curve.color), look) << "an untouched form keeps all";
    EXPECT_EQ(curve.factor, 2.5);

    const std::tuple<const char*, const char*, bool> ranges[] = {
        {"-5", "5 m", true}, {"5", "-5", false}, {"a", "5", false}, {"", "", true}};
    for (const auto& [low, high, taken] : ranges) {
        CRangeForm form(*m_loader, Measure(2));
        form.GetLines()[0].text = low;
        form.GetLines()[1].text = high;
        EXPECT_EQ(!form.OnOK().has_value(), taken) << low << high;
        EXPECT_TRUE(!taken || !*low || Measure(2).GetRange() == (SRange{-5, 5}));
    }
    EXPECT_TRUE(Measure(2).IsRangeAutomatic());

    m_loader->ShowPeriod({Seconds(0), Seconds(100)});
    CDateForm date(*m_loader);
    date.GetLines()[0].text = "yesterday";
    EXPECT_TRUE(date.OnOK().has_value());
    date.GetLines()[0].text = Stack().GetTimeText().Format(Seconds(200));
    EXPECT_FALSE(date.OnOK().has_value());
    EXPECT_EQ(m_viewState.GetCursor(ECursor::first), Seconds(200));
    EXPECT_EQ(Shown(), Period(150, 250));
}

TEST_F(GraphCommands, DatesAreReadInBothScales) {
    SSimulationTimeText text;
    text.span = m_adaptors.GetDateTimeSpan();
    text.dateTime = m_adaptors.GetDateTime();
    text.dateTime.showTime = true;
    std::string elapsed, utc;
    text.span.ValueToText(Seconds(3600), elapsed);
    Outils_Temps::CDateTime reference;
    reference.SetDateTime(2026, 3, 14, 10, 0, 0, 0);
    text.dateTime.ValueToText(reference + Seconds(60), utc);
    EXPECT_EQ(ReadTime(text, elapsed), Seconds(3600));
    EXPECT_FALSE(ReadTime(text, utc)) << "no reference";
    text.utcReference = reference;
    EXPECT_EQ(ReadTime(text, ' ' + utc), Seconds(60));
    EXPECT_EQ(ReadTime(text, elapsed), Seconds(3600));
    EXPECT_FALSE(ReadTime(text, ""));
}

TEST_F(GraphCommands, EmptyGraphsSayWhy) {
    EXPECT_TRUE(m_result.Close());
    std::filesystem::remove(m_folder / "dive.tarout");
    OpenAndLoad();
    const auto notice = [this] { return Stack().GetPortlets()[0]->GetNotice(); };
    m_loader->ShowPeriod({Seconds(1000), Seconds(1100)});
    Load();
    const auto text = [this](double seconds) { return Stack().GetTimeText().Format(Seconds(seconds)); };
    EXPECT_EQ(notice(), FormatText(EText::noDataBetween, {text(1000), text(1100), text(0), text(300)}));
    Stack().GetPortlets()[0]->GetPlot().GetSeries()[0]->SetVisible(false);
    m_loader->Relayout();
    EXPECT_EQ(notice(), GetText(EText::curveHidden));
    m_document->GetProject()->graphSettings->AddMeasureGraph("empty");
    Tell(hintGraphAdded);
    EXPECT_EQ(notice(), GetText(EText::graphWithoutCurves));
    auto* graph = m_document->GetProject()->graphSettings->AddMeasureGraph("result");
    graph->AddCurve(&Result(), 1, kLatitude, "computed");
    Tell(hintGraphAdded);
    Load();
    EXPECT_EQ(Stack().GetPortlets()[1]->GetNotice(), FormatText(EText::resultMissing, {"dive.tarout"}));
}

TEST_F(GraphCommands, GraphsAreDescribedInWords) {
    OpenAndLoad();
    m_loader->ShowAlone(true);
    EXPECT_TRUE(DescribeStack(Stack(), m_viewState).starts_with("Latitude: NELIX_NAV - Latitude, "));
    m_viewState.SetCursor(ECursor::first, Seconds(100));
    const std::string words = DescribeStack(Stack(), m_viewState), rows = WriteValues(Stack(), m_viewState);
    EXPECT_NE(words.find(Measure(0).FormatValue(43.01)), std::string::npos) << words;
    EXPECT_NE(rows.find("\tNELIX_NAV - Latitude\t" + Measure(0).FormatValue(43.01)), std::string::npos)
        << rows;
}

} // namespace
