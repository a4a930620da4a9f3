#include "step/internal/FileLoad.h"

#include "step/internal/ReadControl.h"

#include <STEPControl_Reader.hxx>

#include <QByteArray>

#include <array>
#include <cerrno>
#include <istream>
#include <streambuf>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvex {

namespace {

class CountingBuffer : public std::streambuf
{
public:
  CountingBuffer(const char* path, ReadControl& readControl)
      : control(readControl), file(open(path, O_RDONLY | O_CLOEXEC))
  {
    struct stat facts
    {};
    if (file >= 0 && fstat(file, &facts) == 0)
      total = static_cast<double>(facts.st_size);
  }
  ~CountingBuffer() override
  {
    if (file >= 0)
      close(file);
  }
  CountingBuffer(const CountingBuffer&) = delete;
  CountingBuffer& operator=(const CountingBuffer&) = delete;

  bool IsOpen() const
  {
    return file >= 0;
  }

protected:
  int_type underflow() override
  {
    if (control.Cancelled())
      return traits_type::eof();
    const ssize_t count = ReadSome();
    if (count <= 0)
      return traits_type::eof();
    done += static_cast<double>(count);
    if (total > 0.0)
      control.Advance(std::min(1.0, done / total));
    setg(buffer.data(), buffer.data(), buffer.data() + count);
    return traits_type::to_int_type(buffer.front());
  }

private:
  ssize_t ReadSome()
  {
    ssize_t count = 0;
    do
      count = read(file, buffer.data(), buffer.size());
    while (count < 0 && errno == EINTR && !control.Cancelled());
    return count;
  }

  ReadControl& control;
  int file;
  double total = 0.0;
  double done = 0.0;
  std::array<char, 64 * 1024> buffer{};
};

} // namespace

IFSelect_ReturnStatus LoadFile(STEPControl_Reader& reader, const QString& path,
                               ReadControl& control)
{
  const QByteArray name = path.toUtf8();
  const auto buffer = std::make_unique<CountingBuffer>(name.constData(), control);
  if (!buffer->IsOpen())
    return IFSelect_RetError;
  std::istream stream(buffer.get());
  return reader.ReadStream(name.constData(), stream);
}

} // namespace Orvex
