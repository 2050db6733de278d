#pragma once

#include <QPixmap>
#include <QString>
#include <QStringList>

#include "Kit/Widgets/LXImage.h"

// The pictures that came with the program. Their words are not in them: they are drawn into a
// picture when it is loaded, in the user's language.
namespace pictures {

// The picture of that file name, loaded when it is first drawn; none when there is no such file.
// On a fine screen the finer file is taken.
LXImage load(const QString& fileName);

// Begins to read these pictures in a thread of their own: they are drawn soon, and until then the
// windows can be made.
void prefetch(const QStringList& fileNames);

// The program's type in this many pixels.
QFont font(qreal pixels, int weight);

// Forgets the words, so that the next picture reads them anew.
void releaseWords();

}  // namespace pictures
