#pragma once

#include "esg/ESGContentFragment.h"
#include "esg/ESGElement/Icon.h"
#include "esg/ESGElement/Text.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDDParse.h"
#include "support/Show.h"

SHOW(SESGMediaInfo, s.mimeType, s.width, s.height, s.dataSize)
SHOW(SESGMedia, s.content, static_cast<const SESGMediaInfo&>(s))
SHOW(CSpokenText::SSpeechInfo, s.content, s.contentType, s.contentEnc)
SHOW(CSpokenText::SSpokenText, s.text, s.lang, s.content, s.speechInfoURIs, s.speechInfos)
SHOW(CLanguageTag::SLanguageTag, s.content, s.languageSDPTag)
SHOW(CGenre::SGenre, s.type, s.href, s.content, s.index, s.name)
SHOW(CIcon::SIcon, s.link, s.description, s.uri, s.uriType, s.mimeType, s.size, s.language, s.iconUri)
SHOW(CText::SText, s.link, s.description, s.textString, s.uri, s.uriType, s.language)
SHOW(CPreviewDesc::SPreviewDesc, s.content, s.lang, s.linkUri, s.uriType)
SHOW(CPreviewData::SPreviewData, s.previewContents, s.previewIcons, s.descriptions, s.usage, s.media)
SHOW(CPresentationWindow::SPresentationWindow, s.id, s.startTime, s.endTime, s.startTimeElement, s.endTimeElement,
     s.duration)
SHOW(CPopularity::SPopularity, s.rating, s.noOfViews, s.noOfDiscussions, s.samplingDate)
SHOW(CFreshness::SFreshness, s.broadcastDate, s.releaseDate)
SHOW(CTermsOfUse::STermsOfUse, s.type, s.id, s.userConsentRequired, s.countries, s.language, s.termsOfUseText)
SHOW(CTargetUserProfile::STargetUserProfile, s.attributeName, s.attributeValue)
SHOW(CCellTargetArea::SCell, s.value, s.pp2CellIDs)
SHOW(CCellTargetArea::SCellTargetArea, s.type, s.value, s.cells)
SHOW(CBroadcastArea::SArea, s.cc, s.mcc, s.nameArea, s.zipCodes, s.cellTargetArea)
SHOW(CBroadcastArea::SBroadcastArea, s.polarity, s.names.cc, s.names.mcc, s.names.nameArea, s.p_area)
SHOW(CComponent::SComponentItem, s.content, s.language)
SHOW(CComponent::SComponent, s.language, s.videoComponents, s.audioComponents, s.ccComponents, s.appComponents)
SHOW(CContentAdvRatings::SRatingText, s.content, s.lang)
SHOW(CContentAdvRatings::SRating, s.ratingDimension, s.hasDimension, s.ratingDimVal, s.ratingValueStrings)
SHOW(CContentAdvRatings::SContentAdvRatings, s.lang, s.regionIdentifier, s.ratedDimensions, s.ratingDescriptions,
     s.ratings)
SHOW(CContentPrivateExt::SContentPrivateExt, s.media, s.capabilities, s.comp, s.contentIcons, s.previews)
SHOW(CATSC3ServiceExt::SATSC3ServiceExt, s.media, s.majorChannelNum, s.minorChannelNum, s.icons)
SHOW(CESGTransport::SESGTransport, s.ipAddress, s.port, s.srcIpAddress, s.transmissionSessionID, s.hasFDT)
SHOW(CGroupingCri::SGroupingCri, s.startTime, s.endTime, s.type, s.href, s.genre, s.idRef, s.serviceCriteria)
SHOW(CFragment::SFragment, s.transportID, s.id, s.validFrom, s.validTo, s.fragmentEncoding, s.fragmentType, s.idRef,
     s.startTime, s.endTime)
SHOW(CScheduleContentRef::SScheduleContentRef, s.idRef, s.contentLocation, s.presentationWindows)
SHOW(CSGDeliveryUnit::SSGDeliveryUnit, s.transportObjectID, s.versionIDLength, s.contentLocation, s.validFrom,
     s.validTo, s.fragments)
SHOW(CDescriptorEntry::SDescriptorEntry, s.type, s.groupingCri, s.transport, s.alternativeAccessURLs, s.deliveryUnits)
