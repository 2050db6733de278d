#pragma once

#include <QString>

// The catalogue answers without a closing period, which suits captions, tips and single sentences.
// Beside another sentence the missing stop would look like a slip. Languages with a full stop of
// their own ("。") write it in the catalogue where it belongs.
namespace fullstops {

// The text, closed with a period if it holds several sentences and its last one has no mark.
QString completed(QString text);
// The text, closed with the full stop of its language if it has no mark at its end: for messages,
// which are sentences.
QString sentence(QString text);

}  // namespace fullstops
