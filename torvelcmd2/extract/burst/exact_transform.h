// Transforms of texts, and of what holds them, that show what the matrix makes of them.
#pragma once

#include "drawingdb/entity.h"

namespace torvel {

/// Transforms an entity so that it looks as the matrix makes it, also where transformBy alone would only come near:
/// texts that a matrix shears give up their justification, and lines of text get codes for letters that are stretched
/// or slanted. transformRefused for those whose lines or background would have to be too.
OdResult transformExactly(OdDbEntity& entity, const OdGeMatrix3d& matrix);

}  // namespace torvel
