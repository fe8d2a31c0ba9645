#pragma once

#include "base/PrintedList.h"

#include <QByteArray>

namespace zenka::painting {

/// The list on A4 sheets, black on white and large enough for a red lamp. Takes some ten milliseconds; any
/// thread, behind a QGuiApplication.
QByteArray checklistPdf(const base::PrintedList& list);

} // namespace zenka::painting
