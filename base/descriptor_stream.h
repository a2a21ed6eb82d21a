#pragma once

#include <ostream>
#include <streambuf>
#include <vector>

#include "base/descriptor.h"

namespace brevold {

/** An output stream that writes to a descriptor. A failed write sets badbit and keeps errno. */
class DescriptorStream : private std::streambuf, public std::ostream {
  public:
    explicit DescriptorStream(Descriptor file);

    /** Writes what is buffered and closes the file. Returns false, with errno set, on an error. */
    bool close();

  private:
    std::streambuf::int_type overflow(std::streambuf::int_type c) override;
    int sync() override;

    Descriptor mFile;
    std::vector<char> mBuffer;
};

}  // namespace brevold
