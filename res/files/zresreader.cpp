#include "res/files/zresreader.h"

#include "res/files/resreaderdata.h"

ZResReader::~ZResReader() = default;

ZResFileReader::ZResFileReader() : ZResFileReader(res::defaultIconFile()) { }
ZResFileReader::ZResFileReader(const QString &fileName) : d(std::make_unique<res::ResReaderData>())
{
    d->init(fileName);
}
ZResFileReader::~ZResFileReader() = default;

bool ZResFileReader::init(const QString &fileName) { return d->init(fileName); }
void ZResFileReader::setFileName(const QString &fileName) { d->fileName = fileName; }
QString ZResFileReader::fileName() const { return d->fileName; }
bool ZResFileReader::load() { return d->load(); }
void ZResFileReader::reset() { d->reset(); }

bool ZResFileReader::exists(const QString &id) { return d->exists(id); }
bool ZResFileReader::get(const QString &id, const char *&data, unsigned int &length)
{
    return d->get(id, data, length);
}
QString ZResFileReader::getFirstID() { return d->getFirstID(); }
QString ZResFileReader::getNextID() { return d->getNextID(); }

QString ZResFileReader::getID(unsigned int slot) const { return d->getID(slot); }
bool ZResFileReader::getDataAtOffset(unsigned int offset, const char *&data, unsigned int &length) const
{
    return d->getDataAtOffset(offset, data, length);
}
