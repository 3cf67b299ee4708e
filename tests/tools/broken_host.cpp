// SPDX-License-Identifier: Apache-2.0
//
// Three operations of a host, each of them wrong in its way, and one that is right. The host headers are not included:
// with them this would not compile.
class Edit {
public:
  void setDirty(int);  // other parameters
  bool isImported();   // not const
  void makeOriginal(); // another name
};

void Edit::setDirty(int) {}
bool Edit::isImported()
{
  return false;
}
void Edit::makeOriginal() {}

int co_pid();
int co_pid()
{
  return 1;
}
