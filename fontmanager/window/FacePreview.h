#pragma once

#include <QImage>
#include <QString>

#include <filesystem>

namespace Vellumine::Window {

// A sample text drawn in one face, straight from its file with FreeType inside the window's
// own process: the face is never activated, so fontconfig (and every other application)
// never sees it. A face that cannot be drawn gives `problem` instead of an image.
struct Preview {
    QImage image;
    QString problem;

    bool ok() const { return problem.isEmpty(); }
};

// Lines are broken at spaces to fit `width` pixels; characters the face lacks are drawn as
// its .notdef glyph, as a typesetter would show them.
Preview renderPreview(const std::filesystem::path& file, long faceIndex, const QString& text,
                      int pixelSize, int width);

} // namespace Vellumine::Window
