#pragma once
// Doubly linked lists. The head lies in the caller's frame; a list owns nothing of what hangs on it.
// A record that goes on a list begins with a NODE.

struct NODE {
  NODE* next = nullptr;
  NODE* previous = nullptr;
};

struct LIST {
  NODE* head = nullptr;
  NODE* tail = nullptr;
  int count = 0;
};

void lstInit(LIST* list);
void lstAdd(LIST* list, NODE* node);                     // appends
void lstInsert(LIST* list, NODE* previous, NODE* node);  // behind `previous`; null: at the head
void lstDelete(LIST* list, NODE* node);                  // unlinks, clears the node's links, frees nothing
NODE* lstFirst(const LIST* list);                        // the four: a node, or null
NODE* lstLast(const LIST* list);
NODE* lstNext(const NODE* node);
NODE* lstPrevious(const NODE* node);
int lstCount(const LIST* list);
