// movie: version="5" rate="10"
// A look-up may find something in the 257th object; one that finds nothing there ends the scripts.
o = new Object();
i = 0;
while (true) {
  p = new Object();
  p.__proto__ = o;
  o = p;
  i++;
  if (i > 250) trace(i + ": " + o.missing);
}
