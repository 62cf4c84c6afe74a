#include "platform/lists.h"

void lstInit(LIST* list) { *list = {}; }

void lstAdd(LIST* list, NODE* node) { lstInsert(list, list->tail, node); }

void lstInsert(LIST* list, NODE* previous, NODE* node) {
  NODE* next = previous != nullptr ? previous->next : list->head;
  node->previous = previous;
  node->next = next;
  (previous != nullptr ? previous->next : list->head) = node;
  (next != nullptr ? next->previous : list->tail) = node;
  ++list->count;
}

void lstDelete(LIST* list, NODE* node) {
  (node->previous != nullptr ? node->previous->next : list->head) = node->next;
  (node->next != nullptr ? node->next->previous : list->tail) = node->previous;
  *node = {};
  --list->count;
}

NODE* lstFirst(const LIST* list) { return list->head; }
NODE* lstLast(const LIST* list) { return list->tail; }
NODE* lstNext(const NODE* node) { return node->next; }
NODE* lstPrevious(const NODE* node) { return node->previous; }
int lstCount(const LIST* list) { return list->count; }
