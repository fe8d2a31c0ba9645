#pragma once

#include "ui/Window.h"

#include <filesystem>
#include <functional>
#include <string>
#include <utility>

class QImage;
class QQuickItem;
class QSize;

namespace zenka::screenshots {

/// Pictures of one window, in a folder.
class Album {
public:
    Album(ui::Window& window, std::filesystem::path folder) : window_(window), folder_(std::move(folder)) {}

    const std::filesystem::path& folder() const { return folder_; }

    /// What was changed reaches the screen.
    static void settle();

    /// Writes NAME.png, or says on the error stream that it cannot.
    void shoot(const std::string& name);
    /// The same of an item alone.
    void shoot(const std::string& name, const QQuickItem& item);
    /// The same of the window in another size and theme.
    void shoot(const std::string& name, const char* theme, const QSize& size);

    /// Calls back in every theme, at full and at minimum size, with what tells such a picture from the
    /// others:
    /// "-Night-960".
    void inEveryLook(const std::function<void(const std::string& look)>& shootAll);

private:
    void save(const QImage& picture, const std::string& name) const;

    ui::Window& window_;
    std::filesystem::path folder_;
};

/// The first item of the window that bears the name, open sheets included.
QQuickItem* itemNamed(const ui::Window& window, const char* name);

/// The script that comes with the program, for two bodies.
std::string example();

} // namespace zenka::screenshots
