// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <tessel/core/VrmlDB.h>

namespace {

struct Case {
  const char* base;
  const char* url;
  const char* expected;
};

class ExpandURL : public testing::TestWithParam<Case> {};

TEST_P(ExpandURL, ResolvesAgainstTheBase) {
  SbString result;
  VrmlDB::expandURL(GetParam().base, GetParam().url, result);
  EXPECT_STREQ(result.getString(), GetParam().expected) << GetParam().base << " + " << GetParam().url;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ExpandURL,
    testing::Values(Case{"http://host/a/b/c.wrl", "d.wrl", "http://host/a/b/d.wrl"},
                    Case{"http://host/a/b/c.wrl", "/d.wrl", "http://host/d.wrl"},
                    Case{"http://host/a/b/c.wrl", "../d.wrl", "http://host/a/d.wrl"},
                    Case{"http://host/a/b/c.wrl", "../../../d.wrl", "http://d.wrl"},
                    Case{"http://host/a/b/c.wrl", "#Start", "http://host/a/b/c.wrl#Start"},
                    Case{"http://host/a/b/c.wrl?q#f", "#Start", "http://host/a/b/c.wrl#Start"},
                    Case{"http://host/a/#f", "#Start", "http://host/a/#f#Start"},
                    Case{"http://host/a/b/c.wrl", "  e.wrl", "http://host/a/b/e.wrl"},
                    Case{"http://host/a/b/c.wrl", "mailto:x", "mailto:x"},
                    Case{"file:c.wrl", "d.wrl", "file:d.wrl"}, Case{"file:/x/c.wrl", "/d.wrl", "file:/d.wrl"},
                    Case{"ftp://host/a/c.wrl", "/d.wrl", "/d.wrl"}, Case{"c.wrl", "d.wrl", "d.wrl"},
                    Case{"", "d.wrl", "d.wrl"}, Case{"http://h/c", "", ""},
                    Case{"http://host/a/", "b..c/d/../e", "http://host/a/b..c/d/../e"},
                    Case{"http://host/a/", "b/../c..d/../e", "http://host/a/c..d/../e"},
                    Case{"/", "../x", "/../x"}, Case{"/a/b/", "../..", "/a/.."},
                    Case{"/a/b/c", "./d", "/a/b/./d"}));

}  // namespace
