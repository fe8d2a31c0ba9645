#include "painting/ChecklistPdf.h"

#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <string>

namespace zenka::painting {

namespace {

base::PrintedList listOf(int sections) {
    base::PrintedList list{.title = "Zenka Checklist", .lines = {"Hill <b>&\u00e9"}};
    for (int i = 0; i < sections; ++i)
        list.sections.push_back({.title = "CAM" + std::to_string(i),
                                 .table = {.heads = {"", "site time"}, .rows = {{"C2", "20:29:03.1"}}},
                                 .lines = {"12 frames"},
                                 .boxes = {"battery", "card formatted"}});
    return list;
}

struct ChecklistPdf : testing::Test {
    /// The text of a sheet as another program reads it.
    static QString textOf(const QByteArray& pdf) {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("list.pdf")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(pdf);
        file.close();
        QProcess reader;
        reader.start(QStringLiteral("pdftotext"),
                     {QStringLiteral("-layout"), file.fileName(), QStringLiteral("-")});
        EXPECT_TRUE(reader.waitForFinished());
        return QString::fromUtf8(reader.readAllStandardOutput());
    }

    static char** offscreen() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static char name[] = "painting_tests";
        static char* arguments[] = {name, nullptr};
        return arguments;
    }

    int count = 1;
    QGuiApplication application{count, offscreen()};
};

TEST_F(ChecklistPdf, theWordsCanBeReadAndNothingOfThemIsMarkup) {
    const QByteArray pdf = checklistPdf(listOf(1));
    ASSERT_TRUE(pdf.startsWith("%PDF-"));
    const QString text = textOf(pdf);
    for (const char* words :
         {"Hill <b>&\u00e9", "20:29:03.1", "CAM0", "☐ battery", "☐ card formatted", "1 of 1"})
        EXPECT_TRUE(text.simplified().replace(QChar::Nbsp, u' ').contains(QString::fromUtf8(words)))
            << words << " in " << text.toStdString();
}

TEST_F(ChecklistPdf, aLongListGoesOnOnFurtherSheetsWithNothingLost) {
    const QString text = textOf(checklistPdf(listOf(40)));
    EXPECT_TRUE(text.contains(QStringLiteral("CAM39")));
    EXPECT_GT(text.count(QChar::FormFeed), 2);
}

} // namespace

} // namespace zenka::painting
