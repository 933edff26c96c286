// Reads the pictures and colours of the phone's skin.
#pragma once

#include "platform/tyxexport.h"
#include "res/files/util_resreader.h"

#include <QColor>
#include <QPixmap>
#include <QString>
#include <memory>

class UTIL_ShareImage;

// A skin file, whose pictures are rectangles of one image. All processes share the decoded image: the first one that
// loads a skin stores it, the others use it as it is. Whoever switches the skin calls setFileName(), which stores the
// image of the new file for all of them; the others then call init() for the new rectangles.
//
//     UTIL_SkinFileReader skin; // $TYX_RES_SKIN_FILE
//     QPixmap title = skin.getPixmap("titlebar");
//     if (skin.colorExists("Highlight"))
//         palette.setColor(QPalette::Highlight, skin.getColor("Highlight"));
//
// The name of a picture or a colour is its identifier without ".g". A file that cannot be loaded is told on standard
// error, and answers nothing. A reader belongs to its creator and is used from one thread.
class TYX_EXPORT UTIL_SkinFileReader : public UTIL_ResReader {
public:
    UTIL_SkinFileReader(); // init() with the value of TYX_RES_SKIN_FILE
    ~UTIL_SkinFileReader() override;

    // Reads this file, or another one; the image that is shared stays, if there is one. False when the file cannot be
    // loaded.
    bool init(const QString &fileName);
    // The same, and shares the image of the file.
    bool setFileName(const QString &fileName);
    [[nodiscard]] static QString fileName() { return curFileName; }
    [[nodiscard]] static QString getFileName() { return curFileName; }

    // Reads the file that is in use again. That the image does not decode, or cannot be shared, is no failure here: all
    // pictures are empty then.
    bool load(bool reload);
    void reset(); // no file any more; its name, which is that of the process, stays

    bool exists(const QString &id) override;
    bool pixmapExists(const QString &name) override;
    // A copy of its pixels, with their transparency; of a rectangle that reaches out of the image the part inside,
    // which may be an empty pixmap. The whole image when there is no such picture; 20 x 20 white pixels when the file
    // could not be loaded.
    QPixmap getPixmap(const QString &name) override;
    // The image file as a whole, if there is such a picture.
    bool get(const QString &id, const char *&data, unsigned int &length) override;
    bool getByFullFileName(const QString &fileName, const char *&data, unsigned int &length) override;
    bool getByFileName(const QString &fileName, const char *&data, unsigned int &length) override;
    QString getFirstID() override;
    QString getNextID() override;

    // Invalid when there is none.
    QColor getColor(const QString &name);
    bool colorExists(const QString &name);

    static QString curFileName; // the skin file in use
    static UTIL_ShareImage *pSkinImage; // its image; null until a file is loaded, then as long as the process lives
    static int instanceCount; // how many readers this process has made

private:
    struct Data;
    std::unique_ptr<Data> d;
};
