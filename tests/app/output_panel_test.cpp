// The lines of runs and checks, their filter, and the way from a line to its value.
#include "app/main_frame.h"
#include "document/edits.h"
#include "session.h"
#include "views/grid_view.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTextBlock>

using namespace Application_Tarvel;
using namespace Communication_Interfaces;
using testing::ElementsAre;

namespace {

class OutputPanel : public test::Session {
  protected:
    static QStringList Shown(const CTrvOutputWnd& output) {
        QStringList lines;
        for (QTextBlock block = output.document()->begin(); block.isValid(); block = block.next())
            if (block.isVisible() && !block.text().isEmpty()) lines << block.text();
        return lines;
    }
};

TEST_F(OutputPanel, OutputGrowsAtItsEnd) {
    CTrvOutputWnd output;
    output.AppendLine(std::string("first"));
    output.moveCursor(QTextCursor::Start);
    output.AppendLine(std::string("second\nthird \xFF"));
    EXPECT_EQ(output.toPlainText(), QString::fromUtf8("first\nsecond\nthird \uFFFD\n"));
    EXPECT_TRUE(output.textCursor().atEnd());
    // What a child sends as one line without end is shown whole, in lines that can be laid out.
    output.clear();
    output.AppendLine(std::string(10'000, 'x'));
    EXPECT_EQ(output.toPlainText().count(u'x'), 10'000);
    EXPECT_EQ(output.blockCount(), 4);
}

TEST_F(OutputPanel, OutputShowsTheTimeOfEachText) {
    CTrvOutputWnd output;
    const QTime morning(8, 30, 15), night(23, 59, 59);
    output.AppendLine(std::string("first\nits second line"), morning);
    output.AppendLine(std::string("\nafter an empty line"), night);
    const QTime none;
    const QTime expected[] = {morning, none, night, none, none};
    ASSERT_EQ(output.blockCount(), 5);
    for (int line = 0; line < 5; ++line) EXPECT_EQ(output.GetTime(line), expected[line]) << line;
    EXPECT_EQ(output.GetTime(5), none);
    output.clear();
    EXPECT_EQ(output.GetTime(0), none);
}

TEST_F(OutputPanel, ShowsTheLinesThatAreAskedFor) {
    CTrvOutputPanel panel;
    CTrvOutputWnd& output = panel.GetLines();
    auto* levels = panel.findChild<QComboBox*>();
    auto* words = panel.findChild<QLineEdit*>();
    const auto write = [&](const char* text, int level) { output.AppendLine({std::string(text), level}); };
    write("run begins", levelInformation);
    write("gps late", levelWarning);
    write("gps lost\nand more of it", levelError);
    write("of an engine to come", 77);
    const QStringList all = Shown(output);
    struct SCase {
        int level;
        const char* words;
        QStringList shown;
    };
    const SCase cases[] = {
        {1, "", {"gps late", "gps lost", "and more of it"}},
        {2, "", {"gps lost", "and more of it"}},
        {1, "LATE gps", {"gps late"}},
        {0, "of", {"and more of it", "of an engine to come"}},
        {0, "nothing has this", {}},
        {0, "", all},
    };
    for (const SCase& c : cases) {
        levels->setCurrentIndex(c.level);
        words->setText(c.words);
        EXPECT_EQ(Shown(output), c.shown) << c.level << c.words;
        EXPECT_EQ(output.CountHidden(), all.size() - c.shown.size());
    }
    // Also what comes later; nothing is lost.
    words->setText("gps");
    write("depth", levelError);
    write("gps back", levelInformation);
    EXPECT_EQ(Shown(output), QStringList({"gps late", "gps lost", "gps back"}));
    words->clear();
    EXPECT_EQ(Shown(output).size(), all.size() + 2);
}

TEST_F(OutputPanel, LeadsFromALineToItsValue) {
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("mission")));
    m_frame->show();
    auto& document = m_frame->GetDocument();
    auto& run = *document.GetProject()->simulationParameters;
    document.GetEdits().Do(Edits::kAddZupt);
    auto& zupt = *run.zupts[0];
    document.GetEdits().Do(Edits::kChangeZupt, zupt, {zupt.mode, run.end, run.begin});
    EXPECT_FALSE(document.StartSimulation());
    m_dialogs.TakeMessages();
    CTrvOutputWnd& output = m_frame->GetOutput();
    auto& grid = m_frame->GetProcessing().GetGrid();
    QTextBlock link = output.document()->begin();
    while (link.isValid() && !link.begin().fragment().charFormat().fontUnderline()) link = link.next();
    ASSERT_TRUE(link.isValid());
    const auto isAtZupt = [&] {
        const auto* selected = grid.GetSelected();
        return selected && selected->GetObject() == &zupt && !selected->GetFault().empty();
    };
    for (const bool byKey : {false, true}) {
        grid.Select(*m_frame->GetProcessing().GetTree().GetParametersItem());
        m_frame->ToggleBar(commandProcessingPanel); // hidden: it comes back
        QTextCursor caret(link);
        output.setTextCursor(caret);
        if (byKey)
            QTest::keyClick(&output, Qt::Key_Return);
        else
            QTest::mouseClick(output.viewport(), Qt::LeftButton, {}, output.cursorRect(caret).center());
        EXPECT_TRUE(isAtZupt()) << byKey;
        EXPECT_TRUE(m_frame->IsBarShown(commandProcessingPanel));
    }
    // The object goes, its line stays and leads nowhere.
    document.GetEdits().Do(Edits::kRemoveZupt, zupt);
    grid.Select(*m_frame->GetProcessing().GetTree().GetParametersItem());
    QTest::keyClick(&output, Qt::Key_Return);
    EXPECT_EQ(grid.GetSelected(), m_frame->GetProcessing().GetTree().GetParametersItem());
}

} // namespace
