// Plotting: the view of a document as a picture.
#pragma once

#include <map>
#include <string>

#include "torvelhost/plot/picture.h"
#include "torvelhost/session/document_view.h"

namespace host {

struct Plot {
    Picture picture;
    std::map<std::string, int> notDrawn;  // entities of each kind that could not be drawn

    /// "not drawn: 3 BODY, 1 IMAGE", or empty.
    std::wstring warning() const;
};

/// The current space on white paper: as ZOOM left it, or all of it.
Plot plotView(Document& document, DocumentView& view);

}  // namespace host
