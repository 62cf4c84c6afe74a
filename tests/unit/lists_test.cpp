#include "platform/lists.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Letter : NODE {
  char letter;
  explicit Letter(char which) : letter(which) {}
};

// The letters from head to tail, and from tail to head behind a bar.
std::string render(const LIST& list) {
  std::string text;
  for (NODE* node = lstFirst(&list); node != nullptr; node = lstNext(node)) text += static_cast<Letter*>(node)->letter;
  text += '|';
  for (NODE* node = lstLast(&list); node != nullptr; node = lstPrevious(node))
    text += static_cast<Letter*>(node)->letter;
  EXPECT_EQ(static_cast<std::size_t>(lstCount(&list)) * 2 + 1, text.size());
  return text;
}

TEST(Lists, TakeNodesInAndLetThemGoAtEachPlace) {
  Letter a('a'), b('b'), c('c'), d('d');
  LIST list;
  lstInit(&list);
  EXPECT_EQ(render(list), "|");
  lstInsert(&list, nullptr, &b);
  lstAdd(&list, &d);
  lstInsert(&list, nullptr, &a);
  lstInsert(&list, &b, &c);
  EXPECT_EQ(render(list), "abcd|dcba");
  lstDelete(&list, &b);
  EXPECT_EQ(render(list), "acd|dca");
  lstDelete(&list, &a);
  lstDelete(&list, &d);
  EXPECT_EQ(render(list), "c|c");
  lstInsert(&list, &c, &a);  // a node that was let go can be taken in again
  EXPECT_EQ(render(list), "ca|ac");
  lstDelete(&list, &a);
  lstDelete(&list, &c);
  EXPECT_EQ(render(list), "|");
}

}  // namespace
