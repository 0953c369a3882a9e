#pragma once

#include "tarn/json/json.h"

#include <string>

namespace vantrel {
class MediaLibrary;
}

namespace vantrel::ombra {

/// Takes out of a show's settings what would put other media than the show's own on a player, where they come
/// without the library that they were made with: that player stays as it is. A sentence of it joins the note.
void leaveOtherMedia(Json& settings, const MediaLibrary& ofShow, const MediaLibrary& present,
                     std::string& note);

} // namespace vantrel::ombra
