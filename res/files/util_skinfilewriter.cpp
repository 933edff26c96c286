#include "res/files/util_skinfilewriter.h"

#include "res/files/skinwriterdata.h"

UTIL_SkinFileWriter::UTIL_SkinFileWriter() : d(std::make_unique<res::SkinWriterData>()) { }
UTIL_SkinFileWriter::UTIL_SkinFileWriter(const QString &fileName, const QString &imageFileName) : UTIL_SkinFileWriter()
{
    init(fileName, imageFileName);
}
UTIL_SkinFileWriter::~UTIL_SkinFileWriter() = default;

void UTIL_SkinFileWriter::init(const QString &fileName, const QString &imageFileName)
{
    reset();
    setFileName(fileName, imageFileName);
}

void UTIL_SkinFileWriter::setFileName(const QString &fileName, const QString &imageFileName)
{
    d->fileName = fileName;
    d->imageFileName = imageFileName;
}

QString UTIL_SkinFileWriter::fileName() const { return d->fileName; }
QString UTIL_SkinFileWriter::imageFileName() const { return d->imageFileName; }
void UTIL_SkinFileWriter::add(const QString &id, const QRect &rect) { d->add(id, rect); }
void UTIL_SkinFileWriter::reset() { d->clear(); }

bool UTIL_SkinFileWriter::write()
{
    std::ignore = d->save(res::Notes::Print);
    return true;
}

bool UTIL_SkinFileWriter::save(QString *error)
{
    const QString reason = d->save(res::Notes::Leave);
    if (error)
        *error = reason;
    return reason.isNull();
}
