#include "App/FontList.h"

#include <fontconfig/fontconfig.h>

FontList::FontList() : m_reader(std::async(std::launch::async, [] { FcInit(); })) {}
