#include "res/files/zresfilewriter.h"

#include "res/files/reswriterdata.h"

ZResFileWriter::ZResFileWriter() : d(std::make_unique<res::ResWriterData>("ZResFileWriter")) { }
ZResFileWriter::ZResFileWriter(const QString &fileName) : ZResFileWriter() { init(fileName); }
ZResFileWriter::~ZResFileWriter() = default;

void ZResFileWriter::init(const QString &fileName)
{
    reset();
    d->fileName = fileName;
}

void ZResFileWriter::setFileName(const QString &fileName) { d->fileName = fileName; }
QString ZResFileWriter::fileName() const { return d->fileName; }
void ZResFileWriter::add(const QString &id, const QByteArray &data) { d->add(id, data); }
void ZResFileWriter::reset() { d->clear(); }

bool ZResFileWriter::write()
{
    std::ignore = d->save(res::Notes::Print);
    return true;
}

bool ZResFileWriter::save(QString *error)
{
    const QString reason = d->save(res::Notes::Leave);
    if (error)
        *error = reason;
    return reason.isNull();
}
