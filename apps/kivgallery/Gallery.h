#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>

class QWidget;

namespace kivui::utility {
class ResourceManager;
}
namespace kivui::drawbot {
class SupplierInterface;
}

namespace kivgallery {

// Renders the pages of the gallery in the look in use and writes one PNG per
// page into a folder. A picture that comes out empty or of one colour is a
// problem, reported by Problems().
class Gallery {
public:
    Gallery(QString folder, kivui::utility::ResourceManager const *resources,
            kivui::drawbot::SupplierInterface *supplier);

    void RenderAll(QString const &look);

    QStringList const &Written() const { return mWritten; }
    QStringList const &Problems() const { return mProblems; }

private:
    void Save(QString const &name, QWidget *widget);
    void Check(QString const &file, QImage const &image);

    void TextControls();
    void ChoiceControls();
    void Views();
    void DrawingAndImages();
    void Dialogs();
    void MessageBoxes();

    QString mFolder;
    QString mLook;
    kivui::utility::ResourceManager const *mResources;
    kivui::drawbot::SupplierInterface *mSupplier;
    QStringList mWritten;
    QStringList mProblems;
};

} // namespace kivgallery
