// Which version a library is: `strings libworkbench-int.so.1n | grep workbench-int`.
// The zero byte keeps the text apart from what the linker puts before it.
[[gnu::used]] static char const version[] = "\0workbench-int " WORKBENCH_INT_VERSION;
