#pragma once

#include <istream>
#include <streambuf>
#include <vector>

#include "base/descriptor.h"

namespace brevold {

/** An input stream that reads from a descriptor. A failed read ends the stream and keeps errno. */
class DescriptorInput : private std::streambuf, public std::istream {
  public:
    explicit DescriptorInput(Descriptor file);

  private:
    std::streambuf::int_type underflow() override;

    Descriptor mFile;
    std::vector<char> mBuffer;
};

}  // namespace brevold
