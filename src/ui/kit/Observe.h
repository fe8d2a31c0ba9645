#pragma once

#include <QObject>
#include <sigc++/sigc++.h>

#include <utility>

namespace zenka::ui {

/// Connects a signal of the rig to a function for as long as a QObject lives.
template <typename Signal, typename Function>
void observe(QObject* owner, Signal& signal, Function function) {
    sigc::connection connection = signal.connect(std::move(function));
    QObject::connect(owner, &QObject::destroyed, [connection]() mutable { connection.disconnect(); });
}

} // namespace zenka::ui
