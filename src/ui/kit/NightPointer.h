#pragma once

#include <QObject>

class QCursor;

namespace zenka::ui {

class Theme;

/// At night an arrow of pure red in the place of the desktop's pointers, which shine white; that of text
/// fields and all others too.
class NightPointer : public QObject {
    Q_OBJECT

public:
    NightPointer(const Theme& theme, QObject* parent);
    ~NightPointer() override;

    static QCursor arrow();

private:
    void follow();

    const Theme& theme_;
    bool shown_ = false;
};

} // namespace zenka::ui
