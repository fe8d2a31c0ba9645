import QtQuick

// Room for one panel. The layout gives the size; what the panel would like plays no part, so that no layout
// can chase its own tail.
Item {
    property alias source: loader.source
    property alias active: loader.active
    property alias item: loader.item
    clip: true
    Loader {
        id: loader
        anchors.fill: parent
    }
}
