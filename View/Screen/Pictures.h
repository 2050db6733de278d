#pragma once

#include <QPixmap>
#include <QString>
#include <QStringList>

#include "Kit/Widgets/LXImage.h"

// The pictures that came with the program. The files contain no words: loading draws them in the
// user's language.
namespace pictures {

// The picture with that file name, loaded at its first drawing; empty when there is no such file.
// The picture is made for the scale of the screen, and its words are drawn at that scale.
LXImage load(const QString& fileName);

// Starts making these pictures in a thread, with their words, so that the windows can be created
// meanwhile.
void prefetch(const QStringList& fileNames);

// The program's font, with a size in pixels.
QFont font(qreal pixels, int weight);

// Forgets the words, so that the next picture loads them again.
void releaseWords();

}  // namespace pictures
