#pragma once

#include "host/idml/FontReference.h"

#include <memory>
#include <optional>
#include <vector>

namespace Galley {

class FontsCatalog;
class Story;
class StyleSheet;
struct StoryRun;
struct TextStyle;

// Documents use dozens of faces, rarely thousands; beyond this many, collectFontUsage
// throws std::length_error.
inline constexpr std::size_t kMaxDistinctFaces = 20000;

// The face used when neither the text nor any style, not even a root style, names one.
inline constexpr const char* kDefaultFontFamily = "Nimbus Roman";
inline constexpr const char* kDefaultFontStyle = "Regular";

// A run's face: its own attributes, then its character style chain, then the attributes
// of its paragraph range, then its paragraph style chain (which ends in the root paragraph
// style), then the root character style, then the application default. Family and face
// are resolved independently of each other.
FontKey resolveRunFont(const StoryRun& run, const StyleSheet& styles);

// The face a style names, completed with the document's and the application's defaults;
// none for a paragraph style that sets nothing along its chain, or a character style that
// sets no family (such as "Italic" alone).
std::optional<FontKey> namedFace(const TextStyle& style, const StyleSheet& styles);

// Every distinct face the document uses, each once: first the faces of the text, in story
// order and text order, then faces that only styles name, in the order of Styles.xml.
// A style's face is completed with the document's and then the application's default where
// its chain leaves family or face open; a character style that sets only a face (such as
// "Italic") names no font by itself. A composite font stands for the faces it is made of.
std::vector<FontKey> collectFontUsage(const std::vector<std::unique_ptr<Story>>& stories,
                                      const StyleSheet& styles, const FontsCatalog& catalog);

} // namespace Galley
