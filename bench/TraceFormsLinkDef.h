#ifdef __CLING__

#pragma link off all globals;
#pragma link off all classes;
#pragma link off all functions;

#pragma link C++ class TraceForm + ;
#pragma link C++ class WordsForm - ;
#pragma link C++ class ListForm - ;
#pragma link C++ class EscapeForm - ;
#pragma link C++ class DeltaForm - ;
#pragma link C++ class LowHighForm - ;

#endif
