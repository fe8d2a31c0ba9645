#include "ui/screenshots/Album.h"

#include "ui/kit/Theme.h"

#include <QCoreApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace zenka::screenshots {

namespace {

QQuickItem* itemBelow(QQuickItem* item, const char* name) {
    if (item->objectName() == QLatin1String(name))
        return item;
    for (QQuickItem* child : item->childItems()) {
        if (QQuickItem* found = itemBelow(child, name))
            return found;
    }
    return nullptr;
}

} // namespace

void Album::settle() {
    for (int i = 0; i < 20; ++i)
        QCoreApplication::processEvents();
}

void Album::save(const QImage& picture, const std::string& name) const {
    const auto path = folder_ / (name + ".png");
    if (!picture.save(QString::fromStdString(path.string())))
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
    else
        std::printf("%s\n", path.c_str());
}

void Album::shoot(const std::string& name) {
    settle();
    save(window_.quickWindow()->grabWindow(), name);
}

void Album::shoot(const std::string& name, const QQuickItem& item) {
    settle();
    const QRectF place = item.mapRectToScene(QRectF(0, 0, item.width(), item.height()));
    save(window_.quickWindow()->grabWindow().copy(place.toRect()), name);
}

void Album::shoot(const std::string& name, const char* theme, const QSize& size) {
    window_.quickWindow()->resize(size);
    window_.theme().choose(QString::fromLatin1(theme));
    shoot(name);
}

void Album::inEveryLook(const std::function<void(const std::string&)>& shootAll) {
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window_.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window_.theme().choose(QString::fromLatin1(theme));
            shootAll(std::string("-") + theme + "-" + std::to_string(size.width()));
        }
    }
}

QQuickItem* itemNamed(const ui::Window& window, const char* name) {
    return itemBelow(window.quickWindow()->contentItem(), name);
}

std::string example() {
    std::ifstream file(std::filesystem::path(ZENKA_SOURCE_DIR) / "examples" / "total-two-bodies.zenka");
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace zenka::screenshots
