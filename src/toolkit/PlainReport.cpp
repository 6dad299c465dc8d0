// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/toolkit/PlainReport.h>

#include <cstdio>

namespace tessel {
namespace {

void toStandardError(std::string_view text, void*) { std::fwrite(text.data(), 1, text.size(), stderr); }

struct Sink {
  PlainReportHandler* handler = toStandardError;
  void* data = nullptr;
} sink;

}  // namespace

void setPlainReportHandler(PlainReportHandler* handler, void* data) {
  sink = {handler ? handler : toStandardError, data};
}

void postPlain(std::string_view text) { sink.handler(text, sink.data); }

}  // namespace tessel
