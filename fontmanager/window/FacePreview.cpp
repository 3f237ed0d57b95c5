#include "fontmanager/window/FacePreview.h"

#include <QPainter>

#include <algorithm>
#include <memory>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace Vellumine::Window {

namespace {

struct Glyph {
    QImage coverage; // 8-bit alpha
    int left = 0;    // from the pen position
    int top = 0;     // above the baseline
    int advance = 0;
    bool space = false;
};

// Coverage of one rendered glyph as an alpha image, copied out of FreeType's buffer.
QImage coverageOf(const FT_Bitmap& bitmap) {
    QImage image(static_cast<int>(bitmap.width), static_cast<int>(bitmap.rows),
                 QImage::Format_Alpha8);
    for (unsigned row = 0; row < bitmap.rows; ++row) {
        const unsigned char* source =
            bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
        std::copy_n(source, bitmap.width, image.scanLine(static_cast<int>(row)));
    }
    return image;
}

std::vector<Glyph> shape(FT_Face face, const QString& text) {
    std::vector<Glyph> glyphs;
    FT_UInt previous = 0;
    for (const char32_t c : text.toUcs4()) {
        const FT_UInt index = FT_Get_Char_Index(face, c);
        if (FT_Load_Glyph(face, index, FT_LOAD_RENDER | FT_LOAD_TARGET_NORMAL) != 0) {
            continue;
        }
        const FT_GlyphSlot slot = face->glyph;
        Glyph glyph;
        glyph.space = c == U' ';
        glyph.advance = static_cast<int>(slot->advance.x >> 6);
        if (previous != 0 && FT_HAS_KERNING(face)) {
            FT_Vector kerning{};
            if (FT_Get_Kerning(face, previous, index, FT_KERNING_DEFAULT, &kerning) == 0 &&
                !glyphs.empty()) {
                glyphs.back().advance += static_cast<int>(kerning.x >> 6);
            }
        }
        if (slot->bitmap.pixel_mode == FT_PIXEL_MODE_GRAY && slot->bitmap.width > 0) {
            glyph.coverage = coverageOf(slot->bitmap);
            glyph.left = slot->bitmap_left;
            glyph.top = slot->bitmap_top;
        }
        glyphs.push_back(std::move(glyph));
        previous = index;
    }
    return glyphs;
}

// Greedy line breaking at spaces; a word wider than the line gets a line of its own.
std::vector<std::pair<std::size_t, std::size_t>> breakLines(const std::vector<Glyph>& glyphs,
                                                            int width) {
    std::vector<std::pair<std::size_t, std::size_t>> lines;
    std::size_t start = 0, lastSpace = 0;
    int x = 0;
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        if (glyphs[i].space) {
            lastSpace = i;
        }
        x += glyphs[i].advance;
        if (x > width && lastSpace > start) {
            lines.emplace_back(start, lastSpace);
            start = lastSpace + 1;
            i = start - 1;
            x = 0;
            lastSpace = start;
        }
    }
    if (start < glyphs.size()) {
        lines.emplace_back(start, glyphs.size());
    }
    return lines;
}

using FaceHandle = std::unique_ptr<FT_FaceRec_, decltype(&FT_Done_Face)>;
using LibraryHandle = std::unique_ptr<FT_LibraryRec_, decltype(&FT_Done_FreeType)>;

} // namespace

Preview renderPreview(const std::filesystem::path& file, long faceIndex, const QString& text,
                      int pixelSize, int width) {
    const QString name = QString::fromStdString(file.filename().string());
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return {{}, QStringLiteral("Cannot preview: %1 is gone.").arg(name)};
    }
    FT_Library rawLibrary = nullptr;
    if (FT_Init_FreeType(&rawLibrary) != 0) {
        return {{}, QStringLiteral("Cannot preview: FreeType could not be started.")};
    }
    const LibraryHandle library(rawLibrary, FT_Done_FreeType);
    FT_Face rawFace = nullptr;
    if (FT_New_Face(library.get(), file.c_str(), faceIndex, &rawFace) != 0) {
        return {{}, QStringLiteral("Cannot preview: %1 is not a readable font.").arg(name)};
    }
    const FaceHandle face(rawFace, FT_Done_Face);
    if (FT_Set_Pixel_Sizes(face.get(), 0, static_cast<FT_UInt>(pixelSize)) != 0) {
        return {{}, QStringLiteral("Cannot preview: %1 has no size to draw at.").arg(name)};
    }
    const std::vector<Glyph> glyphs = shape(face.get(), text);
    if (glyphs.empty()) {
        return {{}, QStringLiteral("Cannot preview: %1 has no glyphs to draw.").arg(name)};
    }
    const auto& metrics = face->size->metrics;
    const int ascender = static_cast<int>(metrics.ascender >> 6);
    const int lineHeight =
        std::max(static_cast<int>(metrics.height >> 6), pixelSize + pixelSize / 4);
    const auto lines = breakLines(glyphs, width);
    QImage image(width, lineHeight * static_cast<int>(lines.size()) + pixelSize / 2,
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    int baseline = ascender + pixelSize / 8;
    for (const auto& [first, last] : lines) {
        int x = 0;
        for (std::size_t i = first; i < last; ++i) {
            const Glyph& glyph = glyphs[i];
            if (!glyph.coverage.isNull()) {
                // The coverage masks black ink.
                QImage ink(glyph.coverage.size(), QImage::Format_ARGB32_Premultiplied);
                ink.fill(Qt::black);
                QPainter mask(&ink);
                mask.setCompositionMode(QPainter::CompositionMode_DestinationIn);
                mask.drawImage(0, 0, glyph.coverage);
                mask.end();
                painter.drawImage(x + glyph.left, baseline - glyph.top, ink);
            }
            x += glyph.advance;
        }
        baseline += lineHeight;
    }
    return {image, {}};
}

} // namespace Vellumine::Window
