#pragma once

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

/// A page as the window shows it: its pictures from the address that is told for the name of each, or left
/// out where that is empty, with its alternative text below; links to what Help has not are plain words.
QString guideMarkdown(const QString& source, const std::function<QString(const QString& picture)>& addressOf);

/// The heading that an anchor such as "a-first-rehearsal" leads to; empty where there is none.
QString headingAt(const QString& source, const QString& anchor);

} // namespace zenka::ui
