// A library that lies where the logging dispatcher is looked for and is none.
extern "C" int unrelatedSymbol() { return 0; }
