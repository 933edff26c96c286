#include "res/files/util_resfilewriter.h"

#include "res/files/reswriterdata.h"

UTIL_ResFileWriter::UTIL_ResFileWriter() : d(std::make_unique<res::ResWriterData>("UTIL_ResFileWriter")) { }
UTIL_ResFileWriter::UTIL_ResFileWriter(const QString &fileName) : UTIL_ResFileWriter() { init(fileName); }
UTIL_ResFileWriter::~UTIL_ResFileWriter() = default;

void UTIL_ResFileWriter::init(const QString &fileName)
{
    reset();
    d->fileName = fileName;
}

void UTIL_ResFileWriter::setFileName(const QString &fileName) { d->fileName = fileName; }
QString UTIL_ResFileWriter::fileName() const { return d->fileName; }
void UTIL_ResFileWriter::add(const QString &id, const QByteArray &data) { d->add(id, data); }
void UTIL_ResFileWriter::reset() { d->clear(); }

bool UTIL_ResFileWriter::write()
{
    std::ignore = d->save(res::Notes::Print);
    return true;
}

bool UTIL_ResFileWriter::save(QString *error)
{
    const QString reason = d->save(res::Notes::Leave);
    if (error)
        *error = reason;
    return reason.isNull();
}
