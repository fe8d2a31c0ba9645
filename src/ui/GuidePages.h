#pragma once

#include <QSize>
#include <QString>

#include <functional>
#include <vector>

namespace zenka::ui {

/// A page of docs/ that Help shows; it is built into the program.
struct GuidePage {
    const char* command; ///< that opens it
    const char* title;
    const char* file;
};

/// In the order of the menu.
const std::vector<GuidePage>& guidePages();

/// Null where the file is none of them. A folder before its name is none of Help's.
const GuidePage* guidePageOf(const QString& file);

/// The Markdown of a page as it stands in docs/.
QString guideSource(const GuidePage& page);

/// Where a picture is had from, and how large it is shown; empty where it is not.
struct GuidePicture {
    QString address;
    QSize size;
};

/// A page as the window shows it: its pictures as told for the name of each, with its alternative text below;
/// links to what Help has not are plain words.
QString guideMarkdown(const QString& source, const std::function<GuidePicture(const QString& name)>& picture);

/// The heading that an anchor such as "a-first-rehearsal" leads to; empty where there is none.
QString headingAt(const QString& source, const QString& anchor);

} // namespace zenka::ui
