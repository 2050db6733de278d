#pragma once

#include <QString>

// A tooltip that shows this text letter for letter. Qt reads a tooltip that looks like markup as
// markup, and names of profiles, macros and programs come from anywhere.
QString plainTip(const QString& text);
